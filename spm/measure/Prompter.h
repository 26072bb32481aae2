#pragma once

#include "spm/measure/LiveLine.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace spm {

/// How much of the measuring is done, in patches.
struct Progress {
    std::size_t done;
    std::size_t all;
};

/// An answer that a person can give.
struct Choice {
    char letter;
    std::string text;
};

/// What is said to the person who measures. All of it goes to standard error: standard output has data alone.
class Prompter {
public:
    Prompter();

    void say(const std::string& text) const;

    /// Runs a measurement, and meanwhile shows on a terminal what is done and waited for.
    /// @param measurement  is given what it has to call between two looks at the button: that throws Interrupted when
    ///                     the person ends the measuring
    /// @param meanwhile    what else is done between two looks
    void await(const Progress& progress, const std::function<void(const std::function<void()>&)>& measurement,
               const std::function<void()>& meanwhile) const;

    /// Whether a person sees questions and can answer them.
    bool canAsk() const { return isShown && isAnswered; }

    /// Asks what to do: one of the choices, or "e" for the end.
    /// @return the letter
    /// @throws Error        when it is the end
    /// @throws Interrupted  when the person ends the measuring by Ctrl-C
    char ask(const std::vector<Choice>& choices) const;

private:
    bool isShown;
    bool isAnswered;
};

} // namespace spm

#pragma once

#include "spm/Instrument.h"

#include <cstddef>
#include <string>

namespace spm {

/// How much of the measuring is done, in patches.
struct Progress {
    std::size_t done;
    std::size_t all;
};

/// What is said to the person who measures. All of it goes to standard error: standard output has data alone.
class Prompter {
public:
    enum class Choice { retry, skip };

    Prompter();

    void say(const std::string& text) const;

    /// Takes the live line away, before something else is shown on the terminal.
    void clear() const;

    /// What to do while the button is waited for: on a terminal a live line shows what is done, and how long the wait
    /// is. The wait throws Interrupted when the person ends the measuring.
    Instrument::Wait wait(const Progress& progress) const;

    /// Whether a person sees questions and can answer them.
    bool canAsk() const { return isShown && isAnswered; }

    /// Asks what to do after a failure.
    /// @throws Error    when it is the end
    /// @throws Interrupted  when the person ends the measuring by Ctrl-C
    Choice askWhatNext() const;

private:
    bool isShown;
    bool isAnswered;
};

} // namespace spm

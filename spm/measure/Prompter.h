#pragma once

#include "spm/measure/StatusLine.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace spm {

/// Progress of a run, in patches.
struct Progress {
    std::size_t done;
    std::size_t all;
};

/// A possible answer to a question.
struct Choice {
    char letter;
    std::string text;
};

/// The dialogue with the user. Writes to standard error: standard output is for values.
class Prompter {
public:
    Prompter();

    void say(const std::string& text) const;

    /// Runs a measurement while showing the status line.
    /// @param measurement  receives a function to call between two polls of the button, which throws Interrupted if the
    ///                     user stops the run
    /// @param onPoll       called between two polls
    void runMeasurement(const Progress& progress, const std::function<void(const std::function<void()>&)>& measurement,
                        const std::function<void()>& onPoll) const;

    /// Whether standard input and standard error are terminals.
    bool canAsk() const { return hasOutput && hasInput; }

    /// Asks the user to choose, or to end the run with "e".
    /// @return the letter of the choice
    /// @throws Error        if the user ends the run, or standard input is at its end
    /// @throws Interrupted  if the user presses Ctrl-C
    char ask(const std::vector<Choice>& choices) const;

private:
    bool hasOutput;
    bool hasInput;
};

} // namespace spm

#pragma once

#include "spm/Console.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace spm {

/// Thrown when the user stops the run.
class Interrupted {};

/// The dialogue with the user. Writes to standard error: standard output is for values. On a terminal, a status line
/// shows the progress while spm waits for the button.
class Prompter {
public:
    /// From then on, Ctrl-C and other requests to end the program only set a flag, so that the instrument can be closed
    /// and the readings saved. A second request ends the program.
    /// @param limit  how long to wait for the button, in seconds
    explicit Prompter(std::int32_t limit);

    void say(const std::string& text) const;

    /// @throws Interrupted  if the user has stopped the run
    static void requireNoInterrupt();

    /// Starts to wait for the button.
    /// @param progress  how much is measured: "12 of 18 patches"
    /// @return a function to call between two polls of the button, which throws Interrupted if the user stops the run,
    ///         and Error if the wait takes longer than the limit
    std::function<void()> waiter(const std::string& progress) const;

    /// Whether standard input and standard error are terminals.
    bool canAsk() const { return isTerminal(stderr) && isTerminal(stdin); }

    /// Asks the user to choose, or to end the run with "e".
    /// @param choices  by letter, in the order of the question
    /// @return the letter of the choice
    /// @throws Error        if the user ends the run, or standard input is at its end
    /// @throws Interrupted  if the user presses Ctrl-C
    char ask(const std::vector<std::pair<char, std::string>>& choices) const;

private:
    std::int32_t waitLimit;
};

} // namespace spm

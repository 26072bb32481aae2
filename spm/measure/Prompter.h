#pragma once

#include <chrono>
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

/// The dialogue with the user. Writes to standard error: standard output is for values. On a terminal, a status line
/// shows the progress while spm waits for the button.
class Prompter {
public:
    /// @param limit  how long to wait for the button
    explicit Prompter(std::chrono::seconds limit);

    void say(const std::string& text) const;

    /// Starts to wait for the button.
    /// @return a function to call between two polls of the button, which throws Interrupted if the user stops the run,
    ///         and Error if the wait takes longer than the limit
    std::function<void()> waiter(const Progress& progress) const;

    /// Whether standard input and standard error are terminals.
    bool canAsk() const { return hasOutput && hasInput; }

    /// Asks the user to choose, or to end the run with "e".
    /// @return the letter of the choice
    /// @throws Error        if the user ends the run, or standard input is at its end
    /// @throws Interrupted  if the user presses Ctrl-C
    char ask(const std::vector<Choice>& choices) const;

private:
    void showStatus(std::string text) const;

    std::chrono::seconds waitLimit;
    bool hasOutput;
    bool hasInput;
};

} // namespace spm

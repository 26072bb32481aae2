#include "spm/measure/Prompter.h"

#include "spm/Console.h"
#include "spm/Error.h"
#include "spm/measure/Interrupt.h"
#include "spm/measure/OutputFile.h"

#include <algorithm>
#include <cstdio>
#include <fmt/format.h>
#include <iostream>
#include <limits>
#include <thread>

namespace spm {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto pollInterval = std::chrono::milliseconds(50);

/// Moves the cursor to the beginning of the terminal's line and clears the line.
constexpr const char* clearLine = "\r\x1b[K";

std::string progressBar(const Progress& progress) {
    constexpr std::size_t width = 24;
    const std::size_t filled = progress.done * width / progress.all;
    return fmt::format("[{:#<{}}{:.<{}}] {} of {} patches", "", filled, "", width - filled, progress.done,
                       progress.all);
}

std::string formatQuestion(const std::vector<Choice>& choices) {
    std::string question;
    for (const Choice& choice : choices) {
        question += fmt::format("{}{} ({})", question.empty() ? "" : ", ", choice.text, choice.letter);
    }
    return question + " or end the run (e)? ";
}

} // namespace

Prompter::Prompter(std::chrono::seconds limit)
    : waitLimit(limit), hasOutput(isTerminal(stderr)), hasInput(isTerminal(stdin)) {}

void Prompter::say(const std::string& text) const {
    writeToStderr((hasOutput ? clearLine : "") + text + '\n');
}

std::function<void()> Prompter::waiter(const Progress& progress) const {
    return [this, bar = progressBar(progress), begin = Clock::now()] {
        InterruptGuard::check();
        const auto waited = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - begin);
        if (waited >= waitLimit) {
            // The module doesn't tell an unpressed button from a row without patches.
            throw Error(fmt::format("nothing was measured within {} s: the button was not pressed, or no patch was "
                                    "found",
                                    waitLimit.count()));
        }
        showStatus(fmt::format("{}; waiting for the button, {} of {} s", bar, waited.count(), waitLimit.count()));
        std::this_thread::sleep_for(pollInterval);
    };
}

/// Leaves the last column empty: some terminals wrap to the next line when it is written.
void Prompter::showStatus(std::string text) const {
    if (!hasOutput) return;
    text.resize(std::min(text.size(), terminalWidth().value_or(std::numeric_limits<std::size_t>::max()) - 1));
    writeToStderr(clearLine + text);
}

char Prompter::ask(const std::vector<Choice>& choices) const {
    const std::string question = formatQuestion(choices);
    for (;;) {
        writeToStderr(question);
        InterruptGuard::waitForInput();
        std::string answer;
        const bool isRead = !!std::getline(std::cin, answer);
        InterruptGuard::check();
        if (!isRead || answer == "e") throw Error("the run was ended after a failure");
        const auto choice =
            std::ranges::find_if(choices, [&](const Choice& each) { return answer == std::string(1, each.letter); });
        if (choice != choices.end()) return choice->letter;
    }
}

} // namespace spm

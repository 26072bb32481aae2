#include "spm/measure/Prompter.h"

#include "spm/Console.h"
#include "spm/Error.h"
#include "spm/measure/OutputFile.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <fmt/format.h>
#include <iostream>
#include <thread>

namespace spm {

namespace {

constexpr auto pollInterval = std::chrono::milliseconds(50);

/// Moves the cursor to the beginning of the terminal's line and clears the line.
constexpr const char* clearLine = "\r\x1b[K";

volatile std::sig_atomic_t isInterrupted = 0;

extern "C" void setInterrupted(int /*signal*/) {
    isInterrupted = 1;
}

} // namespace

Prompter::Prompter(std::int32_t limit) : waitLimit(limit) {
    catchSignals(setInterrupted);
}

void Prompter::say(const std::string& text) const {
    writeToStderr((isTerminal(stderr) ? clearLine : "") + text + '\n');
}

void Prompter::requireNoInterrupt() {
    if (isInterrupted != 0) throw Interrupted();
}

std::function<void()> Prompter::waiter(const std::string& progress) const {
    return [this, progress, begin = std::chrono::steady_clock::now()] {
        requireNoInterrupt();
        const auto passed = std::chrono::steady_clock::now() - begin;
        const auto waited = std::chrono::duration_cast<std::chrono::seconds>(passed).count();
        if (waited >= waitLimit) {
            // The module doesn't tell an unpressed button from a row without patches.
            throw Error(fmt::format("nothing was measured within {} s: the button was not pressed, or no patch was "
                                    "found",
                                    waitLimit));
        }
        if (isTerminal(stderr)) {
            writeToStderr(
                fmt::format("{}{}; waiting for the button, {} of {} s", clearLine, progress, waited, waitLimit));
        }
        std::this_thread::sleep_for(pollInterval);
    };
}

char Prompter::ask(const std::vector<std::pair<char, std::string>>& choices) const {
    std::string question;
    for (const auto& [letter, text] : choices) {
        question += fmt::format("{}{} ({})", question.empty() ? "" : ", ", text, letter);
    }
    for (;;) {
        writeToStderr(question + " or end the run (e)? ");
        while (!hasInput(pollInterval)) {
            requireNoInterrupt();
        }
        std::string answer;
        const bool isRead = !!std::getline(std::cin, answer);
        requireNoInterrupt();
        if (!isRead || answer == "e") throw Error("the run was ended after a failure");
        for (const auto& [letter, text] : choices) {
            if (answer == std::string(1, letter)) return letter;
        }
    }
}

} // namespace spm

#include "spm/measure/Prompter.h"

#include "spm/Console.h"
#include "spm/Error.h"
#include "spm/measure/Interrupt.h"

#include <chrono>
#include <cstdio>
#include <fmt/format.h>
#include <iostream>
#include <thread>

namespace spm {

namespace {

constexpr auto pause = std::chrono::milliseconds(50);
constexpr const char* clearLine = "\r\x1b[K";

/// What can't be shown, because the terminal is gone, is lost: it must not keep the values from being written.
void tell(const std::string& text) {
    static_cast<void>(std::fputs(text.c_str(), stderr));
}

std::string bar(const Progress& progress) {
    constexpr std::size_t width = 24;
    const std::size_t filled = progress.done * width / progress.all;
    return fmt::format("[{:#<{}}{:.<{}}] {} of {} patches", "", filled, "", width - filled, progress.done,
                       progress.all);
}

} // namespace

Prompter::Prompter() : isShown(isTerminal(stderr)), isAnswered(isTerminal(stdin)) {}

void Prompter::say(const std::string& text) const {
    clear();
    tell(text + '\n');
}

void Prompter::clear() const {
    if (isShown) tell(clearLine);
}

Instrument::Wait Prompter::wait(const Progress& progress) const {
    return [this, line = bar(progress), begin = std::chrono::steady_clock::now()] {
        InterruptGuard::check();
        if (isShown) {
            const auto waited = std::chrono::steady_clock::now() - begin;
            tell(fmt::format("{}{}; waiting for the button, {} s ", clearLine, line,
                             std::chrono::duration_cast<std::chrono::seconds>(waited).count()));
        }
        std::this_thread::sleep_for(pause);
    };
}

Prompter::Choice Prompter::askWhatNext() const {
    for (;;) {
        tell("Measure it again (r), skip it (s) or end (e)? ");
        InterruptGuard::waitForInput();
        std::string answer;
        const bool isGiven = !!std::getline(std::cin, answer);
        InterruptGuard::check();
        if (!isGiven || answer == "e") throw Error("ended after a failure");
        if (answer == "r") return Choice::retry;
        if (answer == "s") return Choice::skip;
    }
}

} // namespace spm

#include "spm/measure/Prompter.h"

#include "spm/Console.h"
#include "spm/Error.h"
#include "spm/measure/Interrupt.h"

#include <algorithm>
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

std::string questionOf(const std::vector<Choice>& choices) {
    std::string question;
    for (const Choice& choice : choices) {
        question += fmt::format("{}{} ({})", question.empty() ? "" : ", ", choice.text, choice.letter);
    }
    return question + " or end (e)? ";
}

} // namespace

Prompter::Prompter() : isShown(isTerminal(stderr)), isAnswered(isTerminal(stdin)) {}

void Prompter::say(const std::string& text) const {
    tell((isShown ? clearLine : "") + text + '\n');
}

void Prompter::await(const Progress& progress, const std::function<void(const std::function<void()>&)>& measurement,
                     const std::function<void()>& meanwhile) const {
    LiveLine line(bar(progress), isShown);
    measurement([&] {
        line.noteLook();
        InterruptGuard::check();
        meanwhile();
        std::this_thread::sleep_for(pause);
    });
}

char Prompter::ask(const std::vector<Choice>& choices) const {
    const std::string question = questionOf(choices);
    for (;;) {
        tell(question);
        InterruptGuard::waitForInput();
        std::string answer;
        const bool isGiven = !!std::getline(std::cin, answer);
        InterruptGuard::check();
        if (!isGiven || answer == "e") throw Error("ended after a failure");
        const auto choice =
            std::ranges::find_if(choices, [&](const Choice& each) { return answer == std::string(1, each.letter); });
        if (choice != choices.end()) return choice->letter;
    }
}

} // namespace spm

#include "spm/measure/Prompter.h"

#include "spm/Console.h"
#include "spm/Error.h"
#include "spm/measure/Interrupt.h"
#include "spm/measure/OutputFile.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fmt/format.h>
#include <iostream>
#include <thread>

namespace spm {

namespace {

constexpr auto pollInterval = std::chrono::milliseconds(50);

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

Prompter::Prompter() : hasOutput(isTerminal(stderr)), hasInput(isTerminal(stdin)) {}

void Prompter::say(const std::string& text) const {
    writeToStderr((hasOutput ? clearLine : "") + text + '\n');
}

void Prompter::runMeasurement(const Progress& progress,
                              const std::function<void(const std::function<void()>&)>& measurement,
                              const std::function<void()>& onPoll) const {
    StatusLine line(progressBar(progress), hasOutput);
    measurement([&] {
        line.notePoll();
        InterruptGuard::check();
        onPoll();
        std::this_thread::sleep_for(pollInterval);
    });
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

#include "spm/Console.h"

#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <string_view>
#include <unistd.h>

namespace spm {

std::vector<std::string> arguments(int argc, const char* const* argv) {
    return {argv + 1, argv + argc};
}

std::string quoted(const std::string& argument) {
    constexpr const char* plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789%+,-./:=@_";
    if (!argument.empty() && argument.find_first_not_of(plain) == std::string::npos) return argument;
    std::string text = "'";
    for (const char character : argument) {
        text += character == '\'' ? "'\\''" : std::string(1, character);
    }
    return text + '\'';
}

bool isTerminal(std::FILE* stream) {
    return isatty(fileno(stream)) == 1;
}

void catchSignals(void (*handler)(int)) {
    for (const int each : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action {};
        sigaction(each, nullptr, &action);
        if (action.sa_handler == SIG_IGN) continue;
        action.sa_handler = handler;
        action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
        sigaction(each, &action, nullptr);
    }
}

bool hasInput(std::chrono::milliseconds limit) {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    return poll(&input, 1, static_cast<int>(limit.count())) > 0;
}

void prepareStreams() {
    std::signal(SIGPIPE, SIG_IGN);
}

bool supportsColour() {
    const char* const terminal = std::getenv("TERM");
    const char* const isUnwanted = std::getenv("NO_COLOR");
    return isTerminal(stdout) && terminal != nullptr && std::string_view(terminal) != "dumb" &&
           (isUnwanted == nullptr || *isUnwanted == '\0');
}

} // namespace spm

#include "spm/Console.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace spm {

namespace {

struct CaughtSignal {
    int signal;
    struct sigaction earlier {};
};
std::array<CaughtSignal, 3> caught{{{SIGINT}, {SIGTERM}, {SIGHUP}}};

} // namespace

std::vector<std::string> arguments(int argc, const char* const* argv) {
    return {argv + 1, argv + argc};
}

bool isTerminal(std::FILE* stream) {
    return isatty(fileno(stream)) == 1;
}

std::optional<std::size_t> terminalWidth() {
    winsize size{};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return std::nullopt;
    return size.ws_col;
}

void catchSignals(void (*handler)(int)) {
    for (CaughtSignal& each : caught) {
        struct sigaction action {};
        action.sa_handler = handler;
        action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
        sigaction(each.signal, nullptr, &each.earlier);
        if (each.earlier.sa_handler != SIG_IGN) sigaction(each.signal, &action, nullptr);
    }
}

void restoreSignals() {
    for (const CaughtSignal& each : caught) {
        sigaction(each.signal, &each.earlier, nullptr);
    }
}

void waitForInput(bool (*hasSignal)()) {
    sigset_t signals;
    sigset_t earlier;
    sigemptyset(&signals);
    for (const CaughtSignal& each : caught) {
        sigaddset(&signals, each.signal);
    }
    // A signal that arrives after the test stays pending until ppoll unblocks it, and interrupts ppoll.
    pthread_sigmask(SIG_BLOCK, &signals, &earlier);
    pollfd input{STDIN_FILENO, POLLIN, 0};
    if (!hasSignal()) ppoll(&input, 1, nullptr, &earlier);
    pthread_sigmask(SIG_SETMASK, &earlier, nullptr);
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

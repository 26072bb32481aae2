#include "spm/Console.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <io.h>
#include <iterator>
#include <memory>
#include <windows.h>

namespace spm {

std::vector<std::string> arguments(int /*argc*/, const char* const* /*argv*/) {
    int count = 0;
    const std::unique_ptr<LPWSTR, decltype(&LocalFree)> list(CommandLineToArgvW(GetCommandLineW(), &count), LocalFree);
    std::vector<std::string> texts;
    std::transform(list.get() + 1, list.get() + count, std::back_inserter(texts),
                   [](LPCWSTR text) { return std::filesystem::path(text).string(); });
    return texts;
}

bool isTerminal(std::FILE* stream) {
    return _isatty(_fileno(stream)) != 0;
}

std::optional<std::size_t> terminalWidth() {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info) == 0) return std::nullopt;
    return static_cast<std::size_t>(info.srWindow.Right - info.srWindow.Left + 1);
}

void catchSignals(void (*handler)(int)) {
    for (const int each : {SIGINT, SIGTERM, SIGBREAK}) {
        std::signal(each, handler);
    }
}

void restoreSignals() {
    catchSignals(SIG_DFL);
}

void waitForInput(bool (* /*hasSignal*/)()) {} // Ctrl-C ends the read itself

void prepareStreams() {
    SetConsoleOutputCP(CP_UTF8);
    for (const DWORD stream : {STD_OUTPUT_HANDLE, STD_ERROR_HANDLE}) {
        DWORD mode = 0;
        HANDLE const console = GetStdHandle(stream);
        if (GetConsoleMode(console, &mode) != 0) SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
    }
}

bool supportsColour() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) != 0 &&
           (mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0 && GetEnvironmentVariableW(L"NO_COLOR", nullptr, 0) <= 1;
}

} // namespace spm

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

std::string quoted(const std::string& argument) {
    if (!argument.empty() && argument.find_first_of(" \"&|<>^()%!;,'`$*?~#") == std::string::npos) return argument;
    std::string text = "\"";
    for (const char character : argument) {
        text += character == '"' ? "\\\"" : std::string(1, character);
    }
    return text + '"';
}

bool isTerminal(std::FILE* stream) {
    return _isatty(_fileno(stream)) != 0;
}

void catchSignals(void (*handler)(int)) {
    for (const int each : {SIGINT, SIGTERM, SIGBREAK}) {
        std::signal(each, handler);
    }
}

bool hasInput(std::chrono::milliseconds /*limit*/) {
    return true; // Ctrl-C ends the read itself
}

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

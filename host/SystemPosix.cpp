#include "host/System.h"
#include "platform/posix/RegistryFile.h"

#include <array>
#include <csignal>
#include <unistd.h>

namespace host {

namespace {

struct Caught {
    int signal;
    struct sigaction earlier {};
};
std::array<Caught, 3> caught{{{SIGINT}, {SIGTERM}, {SIGHUP}}};

} // namespace

const char* const moduleFileName = "spm_i1pro3.so";
const char* const sdkFileName = "libi1Pro364.so";

std::filesystem::path programFolder() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

std::vector<std::string> arguments(int argc, const char* const* argv) {
    return {argv + 1, argv + argc};
}

bool isTerminal(std::FILE* stream) {
    return isatty(fileno(stream)) == 1;
}

void catchEnd(void (*handler)(int)) {
    for (Caught& each : caught) {
        struct sigaction action {};
        action.sa_handler = handler;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(each.signal, nullptr, &each.earlier);
        if (each.earlier.sa_handler != SIG_IGN) sigaction(each.signal, &action, nullptr);
    }
}

void releaseEnd() {
    for (const Caught& each : caught) {
        sigaction(each.signal, &each.earlier, nullptr);
    }
}

void prepareStreams() {
    std::signal(SIGPIPE, SIG_IGN);
}

bool isColourConsole() {
    return false;
}

std::string settingsPlace() {
    return registry::storePath();
}

void* findInSdk(const loader::SharedLibrary& module, const char* name) {
    return module.find(name);
}

} // namespace host

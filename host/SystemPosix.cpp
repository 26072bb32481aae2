#include "host/System.h"
#include "platform/posix/RegistryFile.h"

#include <unistd.h>

namespace host {

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

void prepareConsole() {}

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

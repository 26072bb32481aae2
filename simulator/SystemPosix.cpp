#include "simulator/System.h"

#include <cstdlib>
#include <dlfcn.h>

namespace simulator {

std::optional<std::filesystem::path> fileOfEnvironment(const char* variable) {
    const char* const value = std::getenv(variable);
    if (value == nullptr || *value == '\0') return std::nullopt;
    return value;
}

std::FILE* createFile(const std::filesystem::path& path) {
    return std::fopen(path.c_str(), "wxe");
}

std::filesystem::path ownFile() {
    Dl_info info{};
    dladdr(reinterpret_cast<const void*>(&ownFile), &info);
    return std::filesystem::absolute(info.dli_fname);
}

} // namespace simulator

#include "common/Environment.h"

#include <cstdlib>

namespace common {

std::filesystem::path programFolder() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

std::optional<std::filesystem::path> pathFromEnvironment(const char* variable) {
    const char* const value = std::getenv(variable);
    if (value == nullptr || *value == '\0') return std::nullopt;
    return value;
}

} // namespace common

#pragma once

#include <filesystem>
#include <optional>

namespace common {

/// Returns the folder of the running program.
std::filesystem::path programFolder();

/// Returns the path in an environment variable; nullopt if the variable is not set or empty.
std::optional<std::filesystem::path> pathFromEnvironment(const char* variable);

} // namespace common

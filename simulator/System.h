#pragma once

// What the simulated library and the recorder ask of the system; one source per system implements it.

#include <cstdio>
#include <filesystem>
#include <optional>

namespace simulator {

/// The file that an environment variable names.
std::optional<std::filesystem::path> fileOfEnvironment(const char* variable);

/// Creates a file and opens it for writing; null, and errno is set, when that can't be done or there is one already.
std::FILE* createFile(const std::filesystem::path& path);

/// The file of the library that this code is in.
std::filesystem::path ownFile();

} // namespace simulator

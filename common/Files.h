#pragma once

#include <cstdio>
#include <filesystem>
#include <string>

namespace common {

/// Returns the whole content of a file.
/// @throws std::system_error  with the system's error; also if the path is a folder
std::string readFile(const std::filesystem::path& path);

/// Creates a file and opens it for writing.
/// @param mode  "w" to write the system's line endings, or "wb"
/// @return null, with errno set, on failure; also if the path exists, even as a dangling link
std::FILE* createFile(const std::filesystem::path& path, const char* mode);

} // namespace common

#pragma once

#include <filesystem>
#include <string>

namespace spm {

/// Creates or replaces a regular file atomically, by renaming a temporary file: a reader or a crash never finds a
/// partial file. Follows symbolic links and keeps the file's permissions.
/// @throws Error  with the file and the reason
void replaceFile(const std::filesystem::path& file, const std::string& content);

/// Checks that replaceFile could write a file, without changing it.
/// @throws Error  like replaceFile
void requireWritable(const std::filesystem::path& file);

/// Whether two paths refer to the same file, or would after it is created.
bool isSameFile(const std::filesystem::path& one, const std::filesystem::path& other);

/// Writes to standard output and flushes it.
/// @throws Error  with the reason
void writeToStdout(const std::string& text);

/// Writes to standard error. Ignores errors: a closed terminal must not end the run.
void writeToStderr(const std::string& text);

} // namespace spm

#pragma once

#include <filesystem>
#include <string>

namespace spm {

/// Replaces a regular file, at the end of a link the one that it leads to, or makes it: the content is written to a new
/// file beside it first, so that at any time the whole of the earlier or of this content is there.
/// @throws Error  with the file and the reason
void replaceFile(const std::filesystem::path& file, const std::string& content);

/// Writes to standard output, at once.
/// @throws Error  with the reason
void writeOut(const std::string& text);

/// Looks whether a file can be replaced, without doing it.
/// @throws Error  like replaceFile
void requireWritable(const std::filesystem::path& file);

/// Whether two names mean the same file, or would once it is made.
bool isSameFile(const std::filesystem::path& one, const std::filesystem::path& other);

} // namespace spm

#pragma once

#include <filesystem>
#include <string>

namespace host {

/// Replaces a file, or makes it: the content is written beside it first, so that at any time the whole of the earlier
/// or of this content is there.
/// @throws HostError  with the file and the reason
void replaceFile(const std::filesystem::path& file, const std::string& content);

/// Looks whether a file can be replaced, without doing it.
/// @throws HostError  like replaceFile
void requireWritable(const std::filesystem::path& file);

} // namespace host

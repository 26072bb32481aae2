#pragma once

#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>

namespace common {

/// Why a file can't be loaded as a library, according to its headers.
enum class LibraryDefect { none, notALibrary, wrongArchitecture, truncated };

/// Checks the headers of a library in the system's format.
/// @param file  the content of the file
LibraryDefect findHeaderDefect(std::string_view file);

/// Whether a range of bytes is inside the file.
inline bool isInside(std::string_view file, std::uint64_t offset, std::uint64_t length) {
    return offset <= file.size() && length <= file.size() - offset;
}

/// Reads a record at an offset; nullopt if the file is too short.
template <class Record>
std::optional<Record> readRecord(std::string_view file, std::uint64_t offset) {
    Record record{};
    if (!isInside(file, offset, sizeof record)) return std::nullopt;
    std::memcpy(&record, file.data() + offset, sizeof record);
    return record;
}

} // namespace common

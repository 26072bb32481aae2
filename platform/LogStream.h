#pragma once

// A text file to which any number of threads, objects and processes append lines without mixing them. A writer may
// wait while others write, but never for long.

#include <cstdio>
#include <string_view>

/// How much of a text was written.
enum class Written { nothing, part, all };

/// Opens a regular file, creating it if it doesn't exist. Child processes don't inherit it.
/// @param mode  "a" to append, "w" to truncate the file first
/// @return null if the file can't be opened or isn't a regular file
[[nodiscard]] std::FILE* openLogStream(const char* path, const char* mode);

/// Appends a text at the end of the file, with each '\n' converted to the system's line ending.
[[nodiscard]] Written appendText(std::FILE* stream, std::string_view text);

/// Whether the last line lacks its line ending, as happens when the disk is full.
[[nodiscard]] bool endsWithIncompleteLine(std::FILE* stream);

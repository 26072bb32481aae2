#pragma once

// A text file that any number of threads, objects and processes append lines to, each line whole. Nobody waits for a
// reader, and for another writer only as long as it takes it to write.

#include <cstdio>
#include <string_view>

/// How much of a text reached the file.
enum class Written { nothing, part, all };

/// Opens a regular file, and makes it when missing; programs that the process starts do not inherit it.
/// @param mode  "a" to append, "w" to empty it first
/// @return null when it can't be opened or isn't a regular file
[[nodiscard]] std::FILE* openLogStream(const char* path, const char* mode);

/// Appends a text, '\n' in the system's way, behind what others have written.
[[nodiscard]] Written appendText(std::FILE* stream, std::string_view text);

/// Whether the file ends inside a line, as a full disk leaves it.
[[nodiscard]] bool endsWithIncompleteLine(std::FILE* stream);

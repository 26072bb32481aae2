#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace common {

/// Returns the position of the first byte that is not valid UTF-8; the text's size if there is none.
std::size_t findInvalidUtf8(std::string_view text);

/// Checks that a text is UTF-8 without NUL bytes.
/// @param description  a description of the text for error messages
/// @throws Error  with the line, and the byte in that line, both counted from 1
void requireUtf8(std::string_view text, std::string_view description);

/// Makes a text from a file safe to print on a terminal: replaces control characters, which could move the cursor or
/// change settings, by U+FFFD.
std::string printable(std::string_view text);

} // namespace common

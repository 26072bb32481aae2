#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace common {

/// Why a text can't be used: "the chart file chart.csv, line 3, byte 2: ...".
class TextError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Requires UTF-8 without NUL bytes.
/// @param description  what the text is, as errors name it
/// @throws TextError  with the line and the byte in it, both from 1
void requireUtf8(std::string_view text, std::string_view description);

/// A text from a file as a terminal may show it: control characters, which could move the cursor or change settings,
/// become U+FFFD.
std::string printable(std::string_view text);

} // namespace common

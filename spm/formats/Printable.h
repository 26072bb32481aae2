#pragma once

#include <string>
#include <string_view>

namespace spm {

/// A text from a file as a terminal may show it: control characters, which could move the cursor or change settings,
/// become U+FFFD.
std::string printable(std::string_view text);

} // namespace spm

#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace spm {

/// The whole content of a file that the user named.
/// @param what  what the file is, as the error names it: "the chart file"
/// @throws Error  when it can't be read
std::string readInput(const std::filesystem::path& file, std::string_view what);

/// @param description  what the text is, as the error names it: "the chart file chart.csv"
/// @throws Error  when the text is UTF-16, or with the line and the byte that is NUL or not UTF-8
void requireUtf8(std::string_view text, std::string_view description);

} // namespace spm

#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace spm {

/// The whole content of a file that the user named.
/// @param what  what the file is, as the error tells it: "the chart file"
/// @throws Error  when it can't be read
std::string readInput(const std::filesystem::path& file, std::string_view what);

} // namespace spm

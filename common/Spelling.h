#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace common {

/// A text with its ASCII letters in lower case.
std::string lowered(std::string_view text);

/// How many characters have to be inserted, removed or replaced to make one text of the other (Levenshtein distance).
std::size_t editDistance(std::string_view from, std::string_view to);

/// The name that was most likely meant, whatever its case: the nearest of the known ones, at most two edits away.
std::optional<std::string> nearestName(std::string_view given, const std::vector<std::string>& known);

} // namespace common

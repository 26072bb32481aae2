#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace common {

/// Finds the known name with the smallest Levenshtein distance to a misspelled one, ignoring case.
/// @return nullopt if every known name is more than `maxEdits` edits away
std::optional<std::string> nearestName(std::string_view given, const std::vector<std::string>& known,
                                       std::size_t maxEdits = 2);

} // namespace common

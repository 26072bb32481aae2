#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace common {

/// The name that was most likely meant, whatever its case: the nearest of the known ones by Levenshtein distance.
/// @return none when even that needs more edits than these
std::optional<std::string> nearestName(std::string_view given, const std::vector<std::string>& known,
                                       std::size_t maxEdits = 2);

} // namespace common

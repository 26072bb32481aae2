#pragma once

#include "spm/formats/Reference.h"
#include "spm/measure/RunWriter.h"

#include <optional>

namespace spm {

/// Detects that the user measured the wrong strip, or the right one in reverse: compares the readings with the expected
/// values of all strips, by the mean CIEDE2000.
/// @param readings  the patches as measured for the strip, with CIELab values
/// @param run       has the patches of all strips, and a reference
/// @return a message with the strip that fits better and both means; none if the strip fits well, or no other fits
///         clearly better
std::optional<std::string> findBetterFit(std::span<const Reading> readings, const Strip& strip,
                                         const std::vector<Strip>& strips, const Run& run);

} // namespace spm

#pragma once

#include "spm/formats/Reference.h"
#include "spm/measure/RunWriter.h"

#include <optional>

namespace spm {

/// Looks whether what was read of a strip are the patches of another strip, or its own in the other direction, by the
/// mean CIEDE2000 to the expected values.
/// @param read   the patches of the strip, with CIELab values
/// @param chart  the run with all patches and a reference
/// @return what fits better, and how well both do; none when the strip fits, or nothing fits clearly better
std::optional<std::string> findBetterFit(std::span<const Reading> read, const Strip& strip,
                                         const std::vector<Strip>& strips, const Run& chart);

} // namespace spm

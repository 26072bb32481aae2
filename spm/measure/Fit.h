#pragma once

#include "spm/run/Comparison.h"
#include "spm/run/Run.h"

#include <optional>
#include <span>
#include <string>

namespace spm {

/// A strip that readings match better than the one that they were measured for.
struct Fit {
    /// An index in the strips.
    std::size_t strip;
    bool isReversed;
    /// "Row 2 of 4 in reverse".
    std::string name;
    /// The mean CIEDE2000 from the expected values, and that of the strip that was to be measured.
    double mean;
    double askedMean;
};

/// Detects that the user measured the wrong strip, or the right one in reverse: compares the readings with the expected
/// values of all strips, by the mean CIEDE2000.
/// @param readings  a reading for each patch of the strip
/// @param strip     the index of the strip in strips
/// @param run       has the patches of all strips, and a reference
/// @return none if the strip fits well, or no other one both fits well and clearly better
std::optional<Fit> findBetterFit(std::span<const Reading> readings, std::size_t strip, const std::vector<Strip>& strips,
                                 const Run& run);

} // namespace spm

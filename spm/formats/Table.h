#pragma once

#include "spm/formats/Run.h"
#include "spm/formats/Swatch.h"

#include <span>

namespace spm {

// Tables for people, at most 80 columns wide: long names are cut. What was not measured is left out.

/// What the values are for, as the head of a table's first column: "D65/10 degree, simulated".
std::string conditions(bool isSimulated);

/// CIELab values for people, a line per patch below a header.
std::string labTable(std::span<const Reading> readings, bool isSimulated, ColourDepth depth);

/// Spectra for people: the curve, where a terminal shows it, and the values.
std::string spectraTable(std::span<const Reading> readings, bool isSimulated, ColourDepth depth);

} // namespace spm

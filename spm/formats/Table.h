#pragma once

#include "spm/formats/Run.h"
#include "spm/formats/Swatch.h"

#include <span>

namespace spm {

// What was not measured is left out.

/// CIELab values for people, a line per patch below a header.
std::string labTable(std::span<const Reading> readings, bool isSimulated, ColourDepth depth);

/// Spectra for people: the curve, where a terminal shows it, and the values.
std::string spectraTable(std::span<const Reading> readings, bool isSimulated, ColourDepth depth);

} // namespace spm

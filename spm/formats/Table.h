#pragma once

#include "spm/formats/Run.h"
#include "spm/formats/Swatch.h"

#include <span>
#include <string>

namespace spm {

// Tables for people, at most 80 columns wide: long names are cut. What was not measured is left out.

/// What the values are for, as the head of a table's first column: "D65/10 degree, simulated".
std::string conditionsHead(const Run& run);

/// CIELab values of some of the run's readings for people, a line per patch below a header.
std::string labTable(const Run& run, std::span<const Reading> readings, ColourDepth depth);

/// Spectra for people: the curve, where a terminal shows it, and the values.
std::string spectraTable(const Run& run, std::span<const Reading> readings, ColourDepth depth);

} // namespace spm

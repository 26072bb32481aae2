#pragma once

#include "spm/formats/Run.h"
#include "spm/formats/Swatch.h"

#include <span>
#include <string>

namespace spm {

// Tables for reading, at most 80 columns wide; long names are truncated. Missing values are left out.

/// The title of a table's first column: "D65/10 degree, simulated".
std::string conditionsLabel(const Run& run);

/// The CIELab values of some of the run's readings: a header, then a line per patch.
std::string labTable(const Run& run, std::span<const Reading> readings, ColourDepth depth);

/// The spectra of some of the run's readings, on a terminal with a sparkline.
std::string spectraTable(const Run& run, std::span<const Reading> readings, ColourDepth depth);

} // namespace spm

#pragma once

#include "spm/run/Run.h"

#include <span>
#include <string>

namespace spm {

// Tables for reading, at most 80 columns wide; long names are cut. Patches without values are left out.

/// The lines above those of labLines: the titles, and the origin of calculated values.
std::string tableHeader(const Run& run);

/// A line with the CIELab values of each patch.
std::string labLines(const Run& run, std::span<const Patch> patches);

/// The spectra of some of the run's patches.
std::string spectraTable(const Run& run, std::span<const Patch> patches);

/// A blank line and a table of differences and statistics; empty without a reference.
std::string formatComparison(const Run& run);

} // namespace spm

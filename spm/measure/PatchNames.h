#pragma once

#include "spm/measure/Measure.h"

namespace spm {

/// The names of all patches to measure, in order; without a chart or names, "patch 1", "patch 2" and so on.
/// @throws Error or common::CsvError  if the chart can't be read, or the number of names is wrong for the options
std::vector<std::string> patchNames(const MeasureOptions& options);

} // namespace spm

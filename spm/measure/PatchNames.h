#pragma once

#include "spm/measure/Measure.h"

namespace spm {

/// The names of all patches to be measured, in their order. Without a number of rows in the options, there are as many
/// rows as the names fill, or 4 without names.
/// @throws Error or common::CsvError  when the names don't fit the number of patches, or the chart can't be read
std::vector<std::string> patchNames(const MeasureOptions& options);

} // namespace spm

#pragma once

#include "spm/measure/Measure.h"

namespace spm {

/// The names of all patches to be measured, in their order.
/// @throws Error  when there are not as many names as patches, or the chart can't be read
std::vector<std::string> patchNames(const MeasureOptions& options);

} // namespace spm

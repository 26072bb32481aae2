#pragma once

#include "host/Measure.h"

namespace host {

/// The names of all patches to be measured, in their order.
/// @throws HostError  when there are not as many names as patches, or the chart can't be read
std::vector<std::string> patchNames(const MeasureOptions& options);

} // namespace host

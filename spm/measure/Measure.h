#pragma once

#include "spm/measure/Plan.h"

namespace spm {

/// The result of a run; the values are exit statuses. A run is incomplete if the user skipped patches or stopped it.
enum class Outcome { complete = 0, failed = 1, incomplete = 3, outOfTolerance = 4 };

/// Calibrates the instrument and measures. If something fails, the values measured before are still written, and the
/// user is told why.
/// @throws Error  if the run can't start
Outcome measure(const MeasureOptions& options);

} // namespace spm

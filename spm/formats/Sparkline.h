#pragma once

#include "module/SPM.h"

#include <string>
#include <vector>

namespace spm {

/// A spectrum as a one-line curve for the terminal: for each wavelength a block character (U+2581 to U+2588, in UTF-8)
/// for 0 to 100 percent. Values outside this range are clipped; NaN becomes a blank.
std::string sparkline(const std::vector<SPM_REFLECTION>& spectrum);

} // namespace spm

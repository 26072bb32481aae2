#pragma once

#include "module/SPM.h"

#include <string>
#include <vector>

namespace spm {

/// A spectrum as a curve of one line for the terminal: a block character (U+2581 to U+2588, in UTF-8) for each
/// wavelength, from 0 to 100 percent; values beyond are clipped, and one that is no number leaves a blank.
std::string spectralCurve(const std::vector<SPM_REFLECTION>& spectrum);

} // namespace spm

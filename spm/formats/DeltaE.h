#pragma once

#include "module/SPM.h"

namespace spm {

/// The colour difference CIEDE2000 (CIE 142-2001) with kL = kC = kH = 1; the same in both directions.
double deltaE2000(const SPM_LAB& sample, const SPM_LAB& reference);

} // namespace spm

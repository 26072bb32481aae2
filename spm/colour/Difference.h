#pragma once

#include "module/SPM.h"

namespace spm {

/// The colour difference CIEDE2000 with parametric factors of 1 (CIE 142-2001, ISO/CIE 11664-6). It is symmetric.
double deltaE(const SPM_LAB& sample, const SPM_LAB& reference);

} // namespace spm

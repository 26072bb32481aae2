#pragma once

#include "module/SPM.h"

namespace spm {

/// A colour difference formula, with parametric factors of 1: CIEDE2000 (CIE 142-2001, ISO/CIE 11664-6), CIE94 (CIE
/// 116-1995) with the weights for graphic arts, K1 = 0.045 and K2 = 0.015, or the Euclidean distance in CIELab (CIE
/// 15:2004, ISO/CIE 11664-4).
enum class Formula { ciede2000, cie94, cie76 };

/// The formula's name, such as "CIEDE2000".
const char* nameOf(Formula formula);

/// The difference between a sample and a reference. CIE94 takes its weights from the reference; the other formulas are
/// symmetric.
double deltaE(Formula formula, const SPM_LAB& sample, const SPM_LAB& reference);

} // namespace spm

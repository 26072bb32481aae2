#pragma once

#include "spm/colour/Colorimetry.h"

#include <string>

namespace spm {

/// The colour as CSS writes it in sRGB (IEC 61966-2-1), such as "#2a3f97", clipped to the gamut. Colours of other
/// conditions are adapted to the white of sRGB, D65 for the 2 degree observer, by the Bradford transform.
/// @param white  the tristimulus values of the white that the CIELab values refer to
std::string toSrgb(const SPM_LAB& lab, const Xyz& white);

} // namespace spm

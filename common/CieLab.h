#pragma once

#include <array>

namespace common {

/// X, Y and Z, or L*, a* and b*.
using Triple = std::array<double, 3>;

/// Calculates CIELab values by CIE 15:2004, 8.2.1, from tristimulus values of any scale.
/// @param white  the tristimulus values of the reference white, in the same scale
Triple xyzToLab(const Triple& xyz, const Triple& white);

/// The inverse of xyzToLab.
Triple labToXyz(const Triple& lab, const Triple& white);

} // namespace common

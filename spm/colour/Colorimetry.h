#pragma once

// Tristimulus and CIELab values of reflectance spectra, for CIE illuminants and observers, and their colours in sRGB.

#include "module/SPM.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>

namespace spm {

/// The conditions of CIELab values, and of the measurement they come from.
struct Conditions {
    /// One of illuminants. In a file that was read, another one, or empty if the file doesn't say it.
    std::string illuminant = "D65";
    /// The standard observer in degrees: 2 (CIE 1931) or 10 (CIE 1964). 0 if a file that was read doesn't say it.
    std::int32_t observer = 10;
    /// Whether CIELab values are calculated from spectra; otherwise the module measures them.
    bool isCalculated = false;
    /// The instrument's illumination as the module names it, such as "UV Included"; empty if unknown.
    std::string measurement{};
};

/// The values of Conditions::illuminant.
inline constexpr std::array illuminants{"A", "D50", "D65"};

/// The tristimulus values X, Y and Z.
using Xyz = std::array<double, 3>;

/// The tristimulus values of the perfect diffuser; its Y is 100.
Xyz whitePoint(const Conditions& conditions);

/// Inverts the CIELab formulae (CIE 015:2018, 8.2.1).
Xyz toXyz(const SPM_LAB& lab, const Xyz& white);

/// Calculates CIELab values (CIE 015:2018, 8.2.1) from tristimulus values that are summed from 380 nm to 780 nm in
/// steps of 5 nm (7.1). The spectrum is interpolated to these steps by Sprague's fifth-order polynomial, as CIE
/// 167:2005 recommends, and extrapolated by its first and last values.
/// @param spectrum  reflectance in percent from 380 nm on in steps of 10 nm
/// @throws Error  if the spectrum has other wavelengths
SPM_LAB toLab(std::span<const SPM_REFLECTION> spectrum, const Conditions& conditions);

/// The colour as CSS writes it in sRGB (IEC 61966-2-1), such as "#2a3f97", clipped to the gamut. Colours of other
/// conditions are adapted to the white of sRGB, D65 for the 2 degree observer, by the Bradford transform.
/// @param white  the tristimulus values of the white that the CIELab values refer to
std::string toSrgb(const SPM_LAB& lab, const Xyz& white);

} // namespace spm

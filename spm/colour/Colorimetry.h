#pragma once

// Tristimulus and CIELab values of reflectance spectra, for CIE illuminants and observers.

#include "module/SPM.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

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

/// The observer's name: "10 degree".
std::string observerOf(const Conditions& conditions);

/// The origin of the CIELab values: "from the module" or "calculated from spectra".
std::string colorimetryOf(const Conditions& conditions);

/// Inverts colorimetryOf.
bool isCalculated(std::string_view colorimetry);

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

} // namespace spm

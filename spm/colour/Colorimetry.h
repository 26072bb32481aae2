#pragma once

// Colour values of reflectance spectra for the conditions of the CIE.

#include "module/SPM.h"

#include <array>
#include <span>
#include <string>

namespace spm {

/// What CIELab values are for, how they were obtained, and how the patches were measured.
struct Conditions {
    /// One of illuminants.
    std::string illuminant = "D65";
    /// The standard observer in degrees: 2 (CIE 1931) or 10 (CIE 1964).
    std::int32_t observer = 10;
    /// Whether the values are calculated from the spectra; otherwise they are the module's own.
    bool isCalculated = false;
    /// The instrument's illumination as the module names it, such as "UV Included"; empty when unknown.
    std::string measurement{};
};

/// The illuminants that values can be calculated for.
inline constexpr std::array illuminants{"A", "D50", "D65"};

/// The observer for people: "10 degree".
std::string observerOf(const Conditions& conditions);

/// How the CIELab values were obtained, for people.
std::string colorimetryOf(const Conditions& conditions);

/// The tristimulus values X, Y and Z.
using Xyz = std::array<double, 3>;

/// The perfect diffuser under the conditions; its Y is 100.
Xyz whitePoint(const Conditions& conditions);

/// Inverts the CIELab formulae (CIE 015:2018, 8.2.1).
Xyz toXyz(const SPM_LAB& lab, const Xyz& white);

/// Calculates CIELab values (CIE 015:2018, 8.2.1) for the illuminant and the observer from tristimulus values that are
/// summed from 380 nm to 780 nm in steps of 5 nm (7.1). Between two wavelengths, the spectrum is interpolated by
/// Sprague's fifth-order polynomial, as CIE 167:2005 recommends; beyond its ends it has the value of the nearest end.
/// @param spectrum  reflectance in percent from 380 nm on in steps of 10 nm
/// @throws Error  when the spectrum has other wavelengths
SPM_LAB toLab(std::span<const SPM_REFLECTION> spectrum, const Conditions& conditions);

} // namespace spm

#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// 380 nm to 730 nm in steps of 10 nm.
inline constexpr std::size_t wavelengths = 36;

/// Reflectance factors, 1 for a perfect diffuser.
using Reflectance = std::array<double, wavelengths>;

struct Patch {
    std::string name;
    Reflectance reflectance;
};

/// What a wavelength contributes to X, Y and Z of a perfect diffuser under an illuminant, for an observer.
struct Weight {
    double x;
    double y;
    double z;
};
using Weights = std::array<Weight, wavelengths>;

/// The patches of a chart in reading order.
/// @param csv  a header line with the wavelengths, then a line per patch: its name (without commas) and 36 reflectance
///             factors from 0 to 2
/// @throws std::runtime_error  with the line's number and what is wrong
std::vector<Patch> parseChart(std::string_view csv);

/// @param csv  a header line, then a line per wavelength: its number in nm, x, y, z
/// @throws std::runtime_error  with the line's number and what is wrong
Weights parseWeights(std::string_view csv);

/// The ColorChecker Classic chart: 24 patches in four rows of six. Spectral reflectance measured by N. Ohta (1997) and
/// published by the Munsell Color Science Laboratory; also in ISO 17321-1.
extern const std::string_view colorCheckerCsv;

/// Weights for illuminant D65 and the CIE 1964 10 degree observer, from the CIE tables at 10 nm. What lies outside
/// 380 nm to 730 nm is in the first and last; the y weights sum to 100.
extern const std::string_view d65TenDegreeCsv;

} // namespace simulator

#pragma once

#include "i1pro3/I1PRO3_SDK.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// Reflectance factors, 1 for a perfect diffuser, at the wavelengths of I1PRO3_SDK.h.
using Reflectance = std::array<double, I1PRO3_NUMBER_OF_REFLECTIONS>;

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
using Weights = std::array<Weight, I1PRO3_NUMBER_OF_REFLECTIONS>;

/// The patches of a chart in reading order, at least one.
/// @param text  a header line with the wavelengths, then a line per patch: its name and its factors from 0 to 2
/// @param what  what the text is, as errors tell it: "the chart chart.csv"
/// @throws common::CsvError
std::vector<Patch> parseChart(std::string_view text, const std::string& what);

/// @param text  a header line, then a line per wavelength: its number in nm, x, y, z
/// @throws common::CsvError
Weights parseWeights(std::string_view text);

/// The ColorChecker Classic chart: 24 patches in four rows of six. Spectral reflectance measured by N. Ohta (1997) and
/// published by the Munsell Color Science Laboratory; also in ISO 17321-1.
extern const std::string_view colorCheckerCsv;

/// Weights for illuminant D65 and the CIE 1964 10 degree observer, from the CIE tables at 10 nm. What lies outside
/// 380 nm to 730 nm is in the first and last; the y weights sum to 100.
extern const std::string_view d65TenDegreeCsv;

} // namespace simulator

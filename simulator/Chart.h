#pragma once

#include "common/CieLab.h"
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

/// Parses a chart of at least one patch, in reading order.
/// @param text  a header line with the wavelengths, then a line per patch: its name and its factors from 0 to 2
/// @param what  the name of the text in error messages, such as "the chart chart.csv"
/// @throws common::Error  with the line and the reason
std::vector<Patch> parseChart(std::string_view text, const std::string& what);

/// The ColorChecker Classic chart: 24 patches in four rows of six. Spectral reflectance measured by N. Ohta (1997) and
/// published by the Munsell Color Science Laboratory; also in ISO 17321-1.
extern const std::string_view colorCheckerCsv;

/// Weights for illuminant D65 and the CIE 1964 10 degree observer, from the CIE tables at 10 nm: the contribution of
/// each wavelength to the tristimulus values X, Y and Z of the perfect diffuser. The first and last weights include
/// those below 380 nm and above 730 nm; the y weights sum to 100.
extern const std::array<common::Triple, I1PRO3_NUMBER_OF_REFLECTIONS> d65TenDegree;

/// Calculates CIELab values for D65 and 10 degree from tristimulus values by weighted summation (CIE 15:2004, 7.1). The
/// reference white is the perfect diffuser, whose tristimulus values are the sums of the weights.
common::Triple cieLab(const Reflectance& reflectance);

} // namespace simulator

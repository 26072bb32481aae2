#pragma once

#include <array>

namespace spm {

/// The CIE's published data for one wavelength.
struct CieRow {
    int wavelength;
    /// Relative spectral power of illuminants A, D50 and D65.
    std::array<double, 3> power;
    /// Colour-matching functions of the 2 degree and 10 degree observers.
    std::array<std::array<double, 3>, 2> matching;
};

/// From 380 nm to 780 nm in steps of 5 nm.
using CieTable = std::array<CieRow, 81>;

/// Generated from cie.csv, which names the sources.
extern const CieTable cieTable;

} // namespace spm

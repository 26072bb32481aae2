#pragma once

#include <array>

namespace spm {

/// What the CIE publishes at a wavelength.
struct CieRow {
    int wavelength;
    /// Relative power of the illuminants A, D50 and D65.
    std::array<double, 3> power;
    /// The colour-matching functions of the 2 degree and the 10 degree observer.
    std::array<std::array<double, 3>, 2> matching;
};

/// From 380 nm to 780 nm in steps of 5 nm.
using CieTable = std::array<CieRow, 81>;

/// The rows of cie.csv.
extern const CieTable cieTable;

} // namespace spm

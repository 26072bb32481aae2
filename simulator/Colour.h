#pragma once

#include "simulator/Chart.h"

namespace simulator {

struct Lab {
    double L;
    double a;
    double b;
};

/// Calculates CIELab values by CIE 15:2004, 7.1 (tristimulus values by weighted summation) and 8.2.1 (CIE 1976
/// L*a*b*). The reference white is the perfect diffuser, whose tristimulus values are the sums of the weights.
Lab cieLab(const Reflectance& reflectance, const Weights& weights);

} // namespace simulator

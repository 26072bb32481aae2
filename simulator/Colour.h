#pragma once

#include "simulator/Chart.h"

namespace simulator {

/// Calculates CIELab values from tristimulus values by weighted summation (CIE 15:2004, 7.1). The reference white is
/// the perfect diffuser, whose tristimulus values are the sums of the weights.
common::Triple cieLab(const Reflectance& reflectance, const Weights& weights);

} // namespace simulator

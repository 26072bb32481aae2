#include "simulator/Colour.h"

#include <cmath>

namespace simulator {

namespace {

double labFunction(double ratio) {
    constexpr double limit = 24.0 / 116.0;
    if (ratio > limit * limit * limit) return std::cbrt(ratio);
    return 841.0 / 108.0 * ratio + 16.0 / 116.0;
}

Weight weightedSum(const Reflectance& reflectance, const Weights& weights) {
    Weight sum{};
    for (std::size_t i = 0; i < weights.size(); ++i) {
        sum.x += weights[i].x * reflectance[i];
        sum.y += weights[i].y * reflectance[i];
        sum.z += weights[i].z * reflectance[i];
    }
    return sum;
}

} // namespace

Lab cieLab(const Reflectance& reflectance, const Weights& weights) {
    Reflectance diffuser;
    diffuser.fill(1.0);
    const Weight white = weightedSum(diffuser, weights);
    const Weight sample = weightedSum(reflectance, weights);
    const double x = labFunction(sample.x / white.x);
    const double y = labFunction(sample.y / white.y);
    const double z = labFunction(sample.z / white.z);
    return {116.0 * y - 16.0, 500.0 * (x - y), 200.0 * (y - z)};
}

} // namespace simulator

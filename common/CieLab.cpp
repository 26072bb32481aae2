#include "common/CieLab.h"

#include <cmath>

namespace common {

namespace {

/// Below the cube of this, labFunction is linear.
constexpr double linearLimit = 24.0 / 116.0;

/// The function f in the CIELab formulae, of X, Y or Z relative to white.
double labFunction(double ratio) {
    if (ratio > linearLimit * linearLimit * linearLimit) return std::cbrt(ratio);
    return 841.0 / 108.0 * ratio + 16.0 / 116.0;
}

double inverseLabFunction(double value) {
    return value > linearLimit ? value * value * value : (value - 16.0 / 116.0) * 108.0 / 841.0;
}

} // namespace

Triple xyzToLab(const Triple& xyz, const Triple& white) {
    const double x = labFunction(xyz[0] / white[0]);
    const double y = labFunction(xyz[1] / white[1]);
    const double z = labFunction(xyz[2] / white[2]);
    return {116.0 * y - 16.0, 500.0 * (x - y), 200.0 * (y - z)};
}

Triple labToXyz(const Triple& lab, const Triple& white) {
    const double y = (lab[0] + 16) / 116;
    return {white[0] * inverseLabFunction(y + lab[1] / 500), white[1] * inverseLabFunction(y),
            white[2] * inverseLabFunction(y - lab[2] / 200)};
}

} // namespace common

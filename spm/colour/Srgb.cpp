#include "spm/colour/Colorimetry.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace spm {

namespace {

using Matrix = std::array<Xyz, 3>;

constexpr Matrix bradford{{{0.8951, 0.2664, -0.1614}, {-0.7502, 1.7135, 0.0367}, {0.0389, -0.0685, 1.0296}}};
constexpr Matrix bradfordInverse{
    {{0.9869929, -0.1470543, 0.1599627}, {0.4323053, 0.5183603, 0.0492912}, {-0.0085287, 0.0400428, 0.9684867}}};
constexpr Matrix linearSrgb{{{3.2406, -1.5372, -0.4986}, {-0.9689, 1.8758, 0.0415}, {0.0557, -0.2040, 1.0570}}};
constexpr Xyz srgbWhite{0.95047, 1, 1.08883};

Xyz multiply(const Matrix& matrix, const Xyz& vector) {
    Xyz product{};
    for (std::size_t i = 0; i < product.size(); ++i) {
        product[i] = matrix[i][0] * vector[0] + matrix[i][1] * vector[1] + matrix[i][2] * vector[2];
    }
    return product;
}

Xyz adapt(const Xyz& xyz, const Xyz& white) {
    Xyz response = multiply(bradford, xyz);
    const Xyz from = multiply(bradford, white);
    const Xyz to = multiply(bradford, srgbWhite);
    for (std::size_t i = 0; i < response.size(); ++i) {
        response[i] *= to[i] / from[i];
    }
    return multiply(bradfordInverse, response);
}

long encode(double linear) {
    const double clipped = std::clamp(linear, 0.0, 1.0);
    const double value = clipped <= 0.0031308 ? 12.92 * clipped : 1.055 * std::pow(clipped, 1 / 2.4) - 0.055;
    return std::lround(value * 255);
}

} // namespace

std::string toSrgb(const SPM_LAB& lab, const Xyz& white) {
    const auto [red, green, blue] = multiply(linearSrgb, adapt(toXyz(lab, white), white));
    return fmt::format("#{:02x}{:02x}{:02x}", encode(red), encode(green), encode(blue));
}

} // namespace spm

#include "spm/colour/Difference.h"

#include <cmath>
#include <numbers>

// CIEDE2000 follows the steps in Sharma, Wu and Dalal, Color Research and Application 30 (2005), 21-30. Angles are in
// degrees.

namespace spm {

namespace {

constexpr double radians = std::numbers::pi / 180;

double cosine(double degrees) {
    return std::cos(degrees * radians);
}

double sine(double degrees) {
    return std::sin(degrees * radians);
}

/// L', C' and h' of CIEDE2000, with a hue from 0 to 360. The hue of greys is undefined but has no effect: the hue
/// difference is multiplied by the chroma.
struct Colour {
    double lightness;
    double chroma;
    double hue;
};

/// Near 0 for greys, near 1 for saturated colours.
double saturation(double chroma) {
    constexpr double pow25To7 = 6103515625;
    const double power = std::pow(chroma, 7);
    return std::sqrt(power / (power + pow25To7));
}

double chromaOf(const SPM_LAB& lab) {
    return std::hypot(static_cast<double>(lab.a), static_cast<double>(lab.b));
}

/// The hue from 0 to 360.
double normalized(double hue) {
    return hue < 0 ? hue + 360 : hue >= 360 ? hue - 360 : hue;
}

/// @param factor  stretches a*
Colour toPrimed(const SPM_LAB& lab, double factor) {
    const double a = factor * static_cast<double>(lab.a);
    const auto b = static_cast<double>(lab.b);
    return {static_cast<double>(lab.L), std::hypot(a, b), normalized(std::atan2(b, a) / radians)};
}

/// Along the shorter arc between the hues. The margin keeps rounding from deciding for opposite hues.
double hueDifference(const Colour& sample, const Colour& reference) {
    const double difference = sample.hue - reference.hue;
    return std::abs(difference) > 180 + 1e-9 ? difference - std::copysign(360, difference) : difference;
}

double lightnessWeight(double lightness) {
    const double square = (lightness - 50) * (lightness - 50);
    return 1 + 0.015 * square / std::sqrt(20 + square);
}

double hueWeight(double chroma, double hue) {
    const double t =
        1 - 0.17 * cosine(hue - 30) + 0.24 * cosine(2 * hue) + 0.32 * cosine(3 * hue + 6) - 0.20 * cosine(4 * hue - 63);
    return 1 + 0.015 * chroma * t;
}

/// The interaction between chroma and hue differences, which matters in the blue region.
double rotation(double chroma, double hue) {
    const double distance = (hue - 275) / 25;
    const double angle = 30 * std::exp(-distance * distance);
    return -sine(2 * angle) * 2 * saturation(chroma);
}

double ciede2000(const Colour& sample, const Colour& reference) {
    const double lightness = (sample.lightness + reference.lightness) / 2;
    const double chroma = (sample.chroma + reference.chroma) / 2;
    const double halfArc = hueDifference(sample, reference) / 2;
    const double hue = normalized(reference.hue + halfArc);

    const double deltaHue = 2 * std::sqrt(sample.chroma * reference.chroma) * sine(halfArc);
    const double l = (sample.lightness - reference.lightness) / lightnessWeight(lightness);
    const double c = (sample.chroma - reference.chroma) / (1 + 0.045 * chroma);
    const double h = deltaHue / hueWeight(chroma, hue);
    return std::sqrt(l * l + c * c + h * h + rotation(chroma, hue) * c * h);
}

} // namespace

double deltaE(const SPM_LAB& sample, const SPM_LAB& reference) {
    const double factor = 1 + 0.5 * (1 - saturation((chromaOf(sample) + chromaOf(reference)) / 2));
    return ciede2000(toPrimed(sample, factor), toPrimed(reference, factor));
}

} // namespace spm

#include "spm/colour/Colorimetry.h"

#include "common/CieLab.h"
#include "spm/colour/CieTable.h"
#include "spm/Error.h"

#include <algorithm>

namespace spm {

namespace {

using SpectrumView = std::span<const SPM_REFLECTION>;

void requireWavelengths(SpectrumView spectrum) {
    int expected = 370;
    const auto isExpected = [&](const SPM_REFLECTION& point) { return point.wavelength == (expected += 10); };
    if (!spectrum.empty() && std::ranges::all_of(spectrum, isExpected)) return;
    throw Error("can't calculate CIELab values: the spectrum doesn't start at 380 nm with steps of 10 nm",
                "measure without --illuminant and --observer");
}

/// Reflectance in percent at 380 nm + 5 nm * step.
double reflectanceAt(SpectrumView spectrum, std::ptrdiff_t step) {
    const std::ptrdiff_t last = std::ssize(spectrum) - 1;
    const std::ptrdiff_t i = step / 2;
    const auto at = [&](std::ptrdiff_t index) {
        return static_cast<double>(spectrum.begin()[std::clamp<std::ptrdiff_t>(index, 0, last)].value);
    };
    if (step % 2 == 0 || i >= last) return at(i);
    // Sprague's interpolation formula, evaluated midway between two points.
    return (150 * (at(i) + at(i + 1)) - 25 * (at(i - 1) + at(i + 2)) + 3 * (at(i - 2) + at(i + 3))) / 256;
}

/// Tristimulus values; the Y of the perfect diffuser is 100.
template <class Reflectance>
Xyz tristimulus(const Conditions& conditions, const Reflectance& percentAt) {
    const auto illuminant =
        static_cast<std::size_t>(std::ranges::find(illuminants, conditions.illuminant) - illuminants.begin());
    const std::size_t observer = conditions.observer == 2 ? 0 : 1;
    Xyz xyz{};
    double norm = 0;
    for (std::size_t step = 0; step < cieTable.size(); ++step) {
        const double power = cieTable[step].power.at(illuminant);
        const auto& matching = cieTable[step].matching[observer];
        norm += power * matching[1];
        for (std::size_t i = 0; i < xyz.size(); ++i) {
            xyz[i] += power * matching[i] * percentAt(static_cast<std::ptrdiff_t>(step));
        }
    }
    for (double& value : xyz) {
        value /= norm;
    }
    return xyz;
}

} // namespace

Xyz whitePoint(const Conditions& conditions) {
    return tristimulus(conditions, [](std::ptrdiff_t) { return 100.0; });
}

Xyz toXyz(const SPM_LAB& lab, const Xyz& white) {
    return common::labToXyz({static_cast<double>(lab.L), static_cast<double>(lab.a), static_cast<double>(lab.b)},
                            white);
}

SPM_LAB toLab(std::span<const SPM_REFLECTION> spectrum, const Conditions& conditions) {
    requireWavelengths(spectrum);
    const Xyz white = whitePoint(conditions);
    const Xyz xyz = tristimulus(conditions, [&](std::ptrdiff_t step) { return reflectanceAt(spectrum, step); });
    const auto [L, a, b] = common::xyzToLab(xyz, white);
    return {static_cast<float>(L), static_cast<float>(a), static_cast<float>(b)};
}

} // namespace spm

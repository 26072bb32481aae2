#include "spm/formats/Run.h"

#include "spm/Error.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace spm {

namespace {

void requireFinite(const Reading& reading, const std::string& what, float value) {
    if (std::isfinite(value)) return;
    throw Error(
        fmt::format("the patch \"{}\" has no finite number for {}: {}; measure it again", reading.name, what, value));
}

} // namespace

void requireFinite(const Reading& reading) {
    if (reading.lab) {
        requireFinite(reading, "L*", reading.lab->L);
        requireFinite(reading, "a*", reading.lab->a);
        requireFinite(reading, "b*", reading.lab->b);
    }
    for (const SPM_REFLECTION& point : reading.spectrum) {
        requireFinite(reading, fmt::format("{} nm", point.wavelength), point.value);
    }
}

void requireValues(const Run& run) {
    if (run.readings.empty()) throw Error("there are no readings to write; measure at least one patch");
    for (const Reading& reading : run.readings) {
        if (!reading.lab && reading.spectrum.empty()) {
            throw Error(fmt::format("the patch \"{}\" has no values; measure it again", reading.name));
        }
        requireFinite(reading);
    }
}

bool hasLab(const Run& run) {
    return std::any_of(run.readings.begin(), run.readings.end(),
                       [](const Reading& reading) { return reading.lab.has_value(); });
}

std::set<std::int32_t> wavelengths(const Run& run) {
    std::set<std::int32_t> all;
    for (const Reading& reading : run.readings) {
        for (const SPM_REFLECTION& point : reading.spectrum) {
            all.insert(point.wavelength);
        }
    }
    return all;
}

std::optional<float> reflectance(const Reading& reading, std::int32_t wavelength) {
    const auto point = std::find_if(reading.spectrum.begin(), reading.spectrum.end(),
                                    [&](const SPM_REFLECTION& each) { return each.wavelength == wavelength; });
    if (point == reading.spectrum.end()) return std::nullopt;
    return point->value;
}

} // namespace spm

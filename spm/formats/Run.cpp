#include "spm/formats/Run.h"

#include "spm/Error.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace spm {

namespace {

void requireFinite(const Reading& reading, const std::string& quantity, float value) {
    if (std::isfinite(value)) return;
    throw Error(fmt::format("the patch \"{}\" has an invalid value for {}: {}; measure it again", reading.name,
                            quantity, value));
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
    if (measuredCount(run) == 0) throw Error("there are no readings to write; measure at least one patch");
    for (const Reading& reading : run.readings) {
        requireFinite(reading);
    }
}

std::string missingReasonOf(const Reading& reading) {
    return reading.missingReason.empty() ? "not reached" : reading.missingReason;
}

std::size_t measuredCount(const Run& run) {
    return static_cast<std::size_t>(std::ranges::count_if(run.readings, &Reading::isMeasured));
}

std::string coverage(const Run& run) {
    return fmt::format("{} of {} patches", measuredCount(run), run.readings.size());
}

std::vector<Gap> gaps(const Run& run) {
    std::vector<Gap> all;
    for (std::size_t i = 0; i < run.readings.size(); ++i) {
        const Reading& reading = run.readings[i];
        if (reading.isMeasured()) continue;
        const std::string reason = missingReasonOf(reading);
        if (!all.empty() && all.back().last == i && all.back().reason == reason) {
            all.back().last = i + 1;
        } else {
            all.push_back({i + 1, i + 1, reason});
        }
    }
    return all;
}

std::string describe(const Gap& gap) {
    const std::string patches = gap.first == gap.last ? fmt::format("patch {}", gap.first)
                                                      : fmt::format("patches {} to {}", gap.first, gap.last);
    return fmt::format("{} not measured: {}", patches, gap.reason);
}

bool hasLab(const Run& run) {
    return std::ranges::any_of(run.readings, [](const Reading& reading) { return reading.lab.has_value(); });
}

std::optional<Xyz> xyzOf(const Run& run, const Reading& reading) {
    if (!run.withXyz || !reading.lab) return std::nullopt;
    return toXyz(*reading.lab, whitePoint(run.conditions));
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
    const auto point = std::ranges::find(reading.spectrum, wavelength, &SPM_REFLECTION::wavelength);
    if (point == reading.spectrum.end()) return std::nullopt;
    return point->value;
}

} // namespace spm

#include "spm/run/Run.h"

#include "spm/Error.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <iterator>

namespace spm {

std::vector<Strip> stripsOf(const Run& run) {
    const bool isSpots = run.patchesInRow <= 0;
    const std::size_t all = run.patches.size();
    const std::size_t inRow = isSpots ? 1 : static_cast<std::size_t>(run.patchesInRow);
    std::vector<Strip> strips;
    for (std::size_t first = 0; first < all; first += inRow) {
        strips.push_back(
            {first, std::min(inRow, all - first),
             fmt::format("{} {} of {}", isSpots ? "Spot" : "Row", strips.size() + 1, (all + inRow - 1) / inRow)});
    }
    return strips;
}

std::span<const Patch> patchesOf(const Run& run, const Strip& strip) {
    return std::span(run.patches).subspan(strip.first, strip.count);
}

std::span<Patch> patchesOf(Run& run, const Strip& strip) {
    return std::span(run.patches).subspan(strip.first, strip.count);
}

bool isComplete(std::span<const Patch> patches) {
    return measuredCount(patches) == patches.size();
}

std::size_t measuredCount(std::span<const Patch> patches) {
    return static_cast<std::size_t>(
        std::ranges::count_if(patches, [](const Patch& patch) { return patch.reading.has_value(); }));
}

std::string coverage(const Run& run) {
    return fmt::format("{} of {} patches", measuredCount(run.patches), run.patches.size());
}

std::vector<std::string> gaps(const Run& run) {
    const auto describe = [&](std::size_t first, std::size_t end) {
        return fmt::format("{} not measured: {}",
                           end - first == 1 ? fmt::format("patch {}", end)
                                            : fmt::format("patches {} to {}", first + 1, end),
                           missingReasonOf(run.patches[first]));
    };
    std::vector<std::string> all;
    for (std::size_t first = 0; first < run.patches.size();) {
        const Patch& patch = run.patches[first];
        std::size_t end = first + 1;
        const auto continues = [&](const Patch& next) {
            return !next.reading && next.missingReason == patch.missingReason;
        };
        while (!patch.reading && end < run.patches.size() && continues(run.patches[end])) {
            ++end;
        }
        if (!patch.reading) all.push_back(describe(first, end));
        first = end;
    }
    return all;
}

std::string missingReasonOf(const Patch& patch) {
    return patch.missingReason.empty() ? "not reached" : patch.missingReason;
}

Xyz xyzOf(const Run& run, const Reading& reading) {
    // Files have four decimals: going on with a file must not change what it says about earlier patches.
    const auto rounded = [](float value) { return std::round(value * 10000) / 10000; };
    const SPM_LAB& lab = reading.lab;
    return toXyz({rounded(lab.L), rounded(lab.a), rounded(lab.b)}, whitePoint(run.conditions));
}

std::vector<std::int32_t> wavelengths(const Run& run) {
    std::vector<std::int32_t> all;
    const auto measured =
        std::ranges::find_if(run.patches, [](const Patch& patch) { return patch.reading.has_value(); });
    if (measured == run.patches.end()) return all;
    std::ranges::transform(measured->reading->spectrum, std::back_inserter(all), &SPM_REFLECTION::wavelength);
    return all;
}

void requireFinite(const std::string& name, const Reading& reading) {
    const auto require = [&](const std::string& quantity, float value) {
        if (std::isfinite(value)) return;
        throw Error(fmt::format("the patch \"{}\" has an invalid value for {}: {}", name, quantity, value),
                    "measure it again");
    };
    for (const SPM_REFLECTION& point : reading.spectrum) {
        require(fmt::format("{} nm", point.wavelength), point.value);
    }
    require("L*", reading.lab.L);
    require("a*", reading.lab.a);
    require("b*", reading.lab.b);
}

} // namespace spm

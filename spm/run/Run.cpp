#include "spm/run/Run.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <functional>

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
    std::vector<std::string> all;
    const auto isSameGap = [](const Patch& one, const Patch& next) {
        return !one.reading && !next.reading && one.missingReason == next.missingReason;
    };
    for (auto first = run.patches.begin(); first != run.patches.end();) {
        const auto last = std::adjacent_find(first, run.patches.end(), std::not_fn(isSameGap));
        const auto end = last == run.patches.end() ? last : last + 1;
        const auto from = first - run.patches.begin() + 1;
        const auto to = end - run.patches.begin();
        if (!first->reading) {
            const std::string place =
                from == to ? fmt::format("patch {}", to) : fmt::format("patches {} to {}", from, to);
            all.push_back(fmt::format("{} not measured: {}", place, first->missingReason));
        }
        first = end;
    }
    return all;
}

std::string observerOf(const Conditions& conditions) {
    return fmt::format("{} degree", conditions.observer);
}

std::string describe(const Conditions& conditions) {
    return conditions.illuminant + '/' + observerOf(conditions);
}

Xyz xyzOf(const Run& run, const Reading& reading) {
    // Files have four decimals: going on with a file must not change what it says about earlier patches.
    const auto rounded = [](float value) { return std::round(value * 10000) / 10000; };
    const SPM_LAB& lab = reading.lab;
    return toXyz({rounded(lab.L), rounded(lab.a), rounded(lab.b)}, whitePoint(run.conditions));
}

} // namespace spm

#include "spm/measure/Fit.h"

#include <limits>

namespace spm {

namespace {

/// In CIEDE2000. Two prints of one chart rarely differ by more; different patches usually do.
constexpr double largestGoodMean = 5;

/// The mean difference of the readings from the expected values of these patches; infinite if a value is missing.
double meanDifference(std::span<const Reading> readings, std::span<const Patch> patches, const Reference& reference) {
    if (readings.size() != patches.size()) return std::numeric_limits<double>::infinity();
    double sum = 0;
    for (std::size_t i = 0; i < readings.size(); ++i) {
        const auto expected = reference.patches.find(patches[i].name);
        if (expected == reference.patches.end()) return std::numeric_limits<double>::infinity();
        sum += deltaE(Formula::ciede2000, readings[i].lab, expected->second);
    }
    return sum / static_cast<double>(readings.size());
}

} // namespace

std::optional<Fit> findBetterFit(std::span<const Reading> readings, std::size_t strip, const std::vector<Strip>& strips,
                                 const Run& run) {
    const auto meanOf = [&](std::span<const Reading> values, std::size_t index) {
        return meanDifference(values, patchesOf(run, strips[index]), *run.reference);
    };
    const double mean = meanOf(readings, strip);
    if (mean <= largestGoodMean || mean == std::numeric_limits<double>::infinity()) return std::nullopt;
    const std::vector<Reading> reversed(readings.rbegin(), readings.rend());
    std::optional<Fit> best;
    for (std::size_t i = 0; i < strips.size(); ++i) {
        for (const bool isReversed : {false, true}) {
            const double other = meanOf(isReversed ? reversed : readings, i);
            const bool isMatch = other <= largestGoodMean && other < mean / 2;
            if (!isMatch || (best && other >= best->mean)) continue;
            best = Fit{i, isReversed, strips[i].name + (isReversed ? " in reverse" : ""), other, mean};
        }
    }
    return best;
}

} // namespace spm

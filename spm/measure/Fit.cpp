#include "spm/measure/Fit.h"

#include "spm/formats/DeltaE.h"

#include <algorithm>
#include <fmt/format.h>
#include <limits>

namespace spm {

namespace {

/// In CIEDE2000. Two prints of one chart rarely differ by more; different patches usually do.
constexpr double largestGoodMean = 5;

/// The mean difference of the readings from the expected values of these patches; infinite if a value is missing.
double meanDifference(std::span<const Reading> readings, std::span<const Reading> patches, const Reference& reference) {
    double sum = 0;
    for (std::size_t i = 0; i < readings.size(); ++i) {
        const auto expected = reference.patches.find(patches[i].name);
        if (expected == reference.patches.end() || !readings[i].lab) return std::numeric_limits<double>::infinity();
        sum += deltaE(Formula::ciede2000, *readings[i].lab, expected->second);
    }
    return sum / static_cast<double>(readings.size());
}

struct Candidate {
    double mean;
    std::string description;
};

} // namespace

std::optional<std::string> findBetterFit(std::span<const Reading> readings, const Strip& strip,
                                         const std::vector<Strip>& strips, const Run& run) {
    const auto patchesOf = [&](const Strip& s) { return std::span(run.readings).subspan(s.first, readings.size()); };
    const Reference& reference = *run.reference;
    const double mean = meanDifference(readings, patchesOf(strip), reference);
    if (mean <= largestGoodMean || mean == std::numeric_limits<double>::infinity()) return std::nullopt;
    const std::vector<Reading> reversed(readings.rbegin(), readings.rend());
    Candidate best{mean / 2, ""}; // only a clearly better strip counts
    for (const Strip& other : strips) {
        const std::span<const Reading> patches = patchesOf(other);
        const double forward = meanDifference(readings, patches, reference);
        const double backward = meanDifference(reversed, patches, reference);
        if (forward < best.mean) best = {forward, other.name};
        if (backward < best.mean) best = {backward, other.name + " in reverse"};
    }
    if (best.description.empty()) return std::nullopt;
    return fmt::format("{} does not match the reference (mean CIEDE2000 {:.1f}); {} matches better ({:.1f})",
                       strip.name, mean, best.description, best.mean);
}

} // namespace spm

#include "spm/measure/Fit.h"

#include "spm/formats/DeltaE.h"

#include <algorithm>
#include <fmt/format.h>
#include <limits>

namespace spm {

namespace {

/// In CIEDE2000: prints of one chart seldom differ by more; other patches mostly do.
constexpr double largestGoodMean = 5;

/// The mean difference if the values are those of a strip; infinite when the reference lacks one of its patches.
double meanDifference(std::span<const Reading> read, std::span<const Reading> patches, const Reference& reference) {
    double sum = 0;
    for (std::size_t i = 0; i < read.size(); ++i) {
        const auto expected = reference.patches.find(patches[i].name);
        if (expected == reference.patches.end() || !read[i].lab) return std::numeric_limits<double>::infinity();
        sum += deltaE(Formula::ciede2000, *read[i].lab, expected->second);
    }
    return sum / static_cast<double>(read.size());
}

struct Candidate {
    double mean;
    std::string text;
};

} // namespace

std::optional<std::string> findBetterFit(std::span<const Reading> read, const Strip& strip,
                                         const std::vector<Strip>& strips, const Run& chart) {
    const auto patchesOf = [&](const Strip& one) { return std::span(chart.readings).subspan(one.first, read.size()); };
    const Reference& reference = *chart.reference;
    const double mean = meanDifference(read, patchesOf(strip), reference);
    if (mean <= largestGoodMean || mean == std::numeric_limits<double>::infinity()) return std::nullopt;
    const std::vector<Reading> reversed(read.rbegin(), read.rend());
    Candidate best{mean / 2, ""};
    for (const Strip& other : strips) {
        const std::span<const Reading> patches = patchesOf(other);
        const double forwards = meanDifference(read, patches, reference);
        const double backwards = meanDifference(reversed, patches, reference);
        if (forwards < best.mean) best = {forwards, other.name};
        if (backwards < best.mean) best = {backwards, other.name + " in the other direction"};
    }
    if (best.text.empty()) return std::nullopt;
    return fmt::format("{} does not fit the reference (mean CIEDE2000 {:.1f}); {} fits it ({:.1f})", strip.name, mean,
                       best.text, best.mean);
}

} // namespace spm

#include "spm/run/Comparison.h"

#include "common/Text.h"
#include "spm/Error.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <functional>
#include <limits>
#include <numeric>
#include <set>
#include <string_view>

namespace spm {

namespace {

constexpr std::array limitKeys{"mean", "median", "p90", "p95", "max"};

/// @param differences  in ascending order; not empty
std::vector<Statistic> statisticsOf(const std::vector<double>& differences, const Limits& limits) {
    const std::size_t count = differences.size();
    const double sum = std::accumulate(differences.begin(), differences.end(), 0.0);
    const auto percentile = [&](std::size_t percent) { return differences[(percent * count + 99) / 100 - 1]; };
    std::vector<Statistic> statistics{
        {"mean", "mean", sum / static_cast<double>(count), {}},
        {"median", "median", (differences[(count - 1) / 2] + differences[count / 2]) / 2, {}},
        {"p90", "90th percentile", percentile(90), {}},
        {"p95", "95th percentile", percentile(95), {}},
        {"max", "maximum", differences.back(), {}}};
    for (Statistic& statistic : statistics) {
        if (limits.contains(statistic.key)) statistic.limit = limits.at(statistic.key);
    }
    return statistics;
}

/// In CIEDE2000. Two prints of one chart rarely differ by more; different patches usually do.
constexpr double largestGoodMean = 5;

/// The mean difference of the readings from the expected values of a strip; infinite if a value is missing.
double meanDifference(const std::vector<Reading>& readings, const Strip& strip, const Run& run) {
    constexpr double unknown = std::numeric_limits<double>::infinity();
    if (readings.size() != strip.count) return unknown;
    double sum = 0;
    for (std::size_t i = 0; i < readings.size(); ++i) {
        const auto expected = run.reference->patches.find(run.patches[strip.first + i].name);
        if (expected == run.reference->patches.end()) return unknown;
        sum += deltaE(readings[i].lab, expected->second);
    }
    return sum / static_cast<double>(readings.size());
}

} // namespace

Limits parseLimits(const std::vector<std::string>& texts) {
    Limits limits;
    for (const std::string& text : texts) {
        const std::string key = text.substr(0, text.find('='));
        const char* const end = text.data() + text.size();
        double limit = -1;
        const auto [stop, error] =
            std::from_chars(std::min(text.data() + key.size() + 1, end), end, limit, std::chars_format::fixed);
        const bool isLimit = error == std::errc{} && stop == end && limit >= 0 && limit <= 999'999'999;
        const bool isKnown = std::ranges::find(limitKeys, key) != limitKeys.end();
        if (isKnown && isLimit && limits.emplace(key, limit).second) continue;
        throw UsageError(fmt::format("--tolerance: \"{}\" is not a limit", text),
                         fmt::format("use each of {} at most once, with a number from 0 to 999999999, such as "
                                     "mean=2,max=5.5",
                                     fmt::join(limitKeys, ", ")));
    }
    return limits;
}

std::string describe(const Reference& reference) {
    return reference.file.string() +
           (reference.statesConditions ? "" : ", which doesn't say its illuminant and observer");
}

std::optional<Difference> differenceOf(const Run& run, const Patch& patch) {
    if (run.reference == nullptr || !patch.reading) return std::nullopt;
    const auto found = run.reference->patches.find(patch.name);
    if (found == run.reference->patches.end()) return std::nullopt;
    const SPM_LAB& expected = found->second;
    const SPM_LAB& lab = patch.reading->lab;
    return Difference{expected, {lab.L - expected.L, lab.a - expected.a, lab.b - expected.b}, deltaE(lab, expected)};
}

std::vector<Patch> worstFirst(const Run& run) {
    std::vector<Patch> patches = run.patches;
    std::ranges::stable_sort(patches, std::greater{}, [&](const Patch& patch) {
        const auto difference = differenceOf(run, patch);
        return difference ? difference->deltaE : -1;
    });
    return patches;
}

std::string Statistic::verdict() const {
    if (!limit) return "";
    if (isWithinLimit()) return fmt::format(" (at most {}: passed)", *limit);
    return fmt::format(" (at most {}: FAILED by {:.2g})", *limit, value - *limit);
}

std::string Comparison::coverage() const {
    return fmt::format("{} of {} patches compared", compared, measured);
}

std::optional<Comparison> compare(const Run& run) {
    if (run.reference == nullptr) return std::nullopt;
    Comparison comparison;
    std::vector<double> differences;
    std::set<std::string_view> measured;
    for (const Patch& patch : run.patches) {
        if (!patch.reading) continue;
        measured.insert(patch.name);
        if (const auto difference = differenceOf(run, patch)) {
            differences.push_back(difference->deltaE);
        } else {
            comparison.notInReference.push_back(patch.name);
        }
    }
    for (const auto& [name, lab] : run.reference->patches) {
        if (!measured.contains(name)) comparison.notMeasured.push_back(name);
    }
    comparison.compared = differences.size();
    comparison.measured = measuredCount(run.patches);
    if (differences.empty()) return comparison;
    std::ranges::sort(differences);
    comparison.statistics = statisticsOf(differences, run.reference->limits);
    comparison.isWithinLimits = std::ranges::all_of(comparison.statistics, &Statistic::isWithinLimit);
    return comparison;
}

std::optional<Fit> findBetterFit(const std::vector<Reading>& readings, const Strip& strip, const Run& run) {
    const double mean = meanDifference(readings, strip, run);
    if (mean <= largestGoodMean || std::isinf(mean)) return std::nullopt;
    const std::vector<Reading> reversed(readings.rbegin(), readings.rend());
    std::optional<Fit> best;
    for (const Strip& other : stripsOf(run)) {
        for (const bool isReversed : {false, true}) {
            const Fit fit{other, isReversed, meanDifference(isReversed ? reversed : readings, other, run)};
            const bool isMatch = fit.mean <= largestGoodMean && fit.mean < mean / 2;
            if (isMatch && (!best || fit.mean < best->mean)) best = fit;
        }
    }
    return best;
}

std::string describeUncompared(const Comparison& comparison) {
    std::string text;
    for (const auto& [reason, names] : {std::pair("not in the reference", &comparison.notInReference),
                                        std::pair("not measured", &comparison.notMeasured)}) {
        if (names->empty()) continue;
        const std::string list = fmt::format("\"{}\"", fmt::join(*names, "\", \""));
        text += fmt::format("Not compared, because {}: {}\n", reason, common::printable(list));
    }
    return text;
}

} // namespace spm

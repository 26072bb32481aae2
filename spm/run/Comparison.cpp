#include "spm/run/Comparison.h"

#include "common/Text.h"
#include "spm/Error.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <functional>
#include <numeric>
#include <set>
#include <sstream>
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

std::string formatNames(std::string_view title, const std::vector<std::string>& names) {
    if (names.empty()) return "";
    return fmt::format("{}: \"{}\"\n", title, common::printable(fmt::format("{}", fmt::join(names, "\", \""))));
}

/// @return none unless the text is digits with an optional decimal part
std::optional<double> parseLimit(const std::string& text) {
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, std::chars_format::fixed);
    const bool isNumber = error == std::errc{} && stop == end && value >= 0 && value <= 999'999'999;
    return isNumber ? std::optional(value) : std::nullopt;
}

} // namespace

Limits parseLimits(const std::string& text) {
    Limits limits;
    std::istringstream items(text + ',');
    for (std::string item; std::getline(items, item, ',');) {
        const std::size_t equals = std::min(item.find('='), item.size());
        const std::string key = item.substr(0, equals);
        const std::optional<double> limit = parseLimit(item.substr(std::min(equals + 1, item.size())));
        const bool isKnown = std::ranges::find(limitKeys, key) != limitKeys.end();
        if (!isKnown || !limit || !limits.emplace(key, *limit).second) {
            throw UsageError(fmt::format("--tolerance: \"{}\" is not a limit", item),
                             fmt::format("use each of {} at most once, with a number from 0 to 999999999, such as "
                                         "mean=2,max=5.5",
                                         fmt::join(limitKeys, ", ")));
        }
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
    return Difference{expected,
                      {lab.L - expected.L, lab.a - expected.a, lab.b - expected.b},
                      deltaE(run.reference->formula, lab, expected)};
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

std::string describeUncompared(const Comparison& comparison) {
    return formatNames("Not compared, because not in the reference", comparison.notInReference) +
           formatNames("Not compared, because not measured", comparison.notMeasured);
}

} // namespace spm

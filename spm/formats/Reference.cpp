#include "spm/formats/Reference.h"

#include "common/Text.h"
#include "spm/Error.h"
#include "spm/formats/PatchFile.h"
#include "spm/formats/Table.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <functional>
#include <numeric>
#include <set>
#include <sstream>
#include <string_view>

namespace spm {

namespace {

/// From the best to the worst; never empty.
using Differences = std::vector<double>;

double mean(const Differences& differences) {
    return std::accumulate(differences.begin(), differences.end(), 0.0) / static_cast<double>(differences.size());
}

double median(const Differences& differences) {
    const std::size_t count = differences.size();
    return (differences[(count - 1) / 2] + differences[count / 2]) / 2;
}

template <std::size_t percent>
double percentile(const Differences& differences) {
    return differences[(percent * differences.size() + 99) / 100 - 1];
}

struct StatisticKind {
    const char* key;
    const char* name;
    double (*of)(const Differences& differences);
};

constexpr std::array<StatisticKind, 5> statisticKinds{{{"mean", "mean", mean},
                                                       {"median", "median", median},
                                                       {"p90", "90th percentile", percentile<90>},
                                                       {"p95", "95th percentile", percentile<95>},
                                                       {"max", "maximum", percentile<100>}}};

std::vector<Statistic> statisticsOf(const Differences& differences, const Limits& limits) {
    std::vector<Statistic> statistics;
    for (const StatisticKind& kind : statisticKinds) {
        const auto limit = limits.find(kind.key);
        statistics.push_back({kind.key, kind.name, kind.of(differences),
                              limit == limits.end() ? std::nullopt : std::optional(limit->second)});
    }
    return statistics;
}

std::optional<double> limitOf(std::string_view text) {
    double value = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isNumber = error == std::errc{} && stop == text.data() + text.size();
    return isNumber && std::isfinite(value) && value >= 0 ? std::optional(value) : std::nullopt;
}

std::string listOf(std::string_view what, const std::vector<std::string>& names) {
    if (names.empty()) return "";
    return fmt::format("{}: \"{}\"\n", what, common::printable(fmt::format("{}", fmt::join(names, "\", \""))));
}

} // namespace

Limits parseLimits(const std::string& text) {
    Limits limits;
    std::istringstream items(text + ',');
    for (std::string item; std::getline(items, item, ',');) {
        const std::string key = item.substr(0, item.find('='));
        const std::optional<double> limit =
            limitOf(std::string_view(item).substr(std::min(key.size() + 1, item.size())));
        const bool isKnown = std::ranges::count(statisticKinds, key, &StatisticKind::key) > 0;
        if (!isKnown || !limit || !limits.emplace(key, *limit).second) {
            throw UsageError(fmt::format("--tolerance: \"{}\" is not a limit", item),
                             "write each of mean, median, p90, p95 and max at most once, with a number from 0 on, as "
                             "in mean=2,max=5");
        }
    }
    return limits;
}

Reference readReference(const std::filesystem::path& file) {
    Reference reference{file, {}};
    for (const Reading& patch : readPatches(file, "the reference file", PatchFileKind::reference)) {
        reference.patches.emplace(patch.name, patch.lab.value());
    }
    return reference;
}

std::optional<Difference> differenceOf(const Run& run, const Reading& reading) {
    if (run.reference == nullptr || !reading.lab) return std::nullopt;
    const auto expected = run.reference->patches.find(reading.name);
    if (expected == run.reference->patches.end()) return std::nullopt;
    return Difference{expected->second, deltaE(run.reference->formula, *reading.lab, expected->second)};
}

std::vector<const Reading*> worstFirst(const Run& run) {
    std::vector<std::pair<double, const Reading*>> order;
    for (const Reading& reading : run.readings) {
        const auto difference = differenceOf(run, reading);
        order.emplace_back(difference ? difference->deltaE : -1, &reading);
    }
    std::ranges::stable_sort(order, std::greater{}, [](const auto& each) { return each.first; });
    std::vector<const Reading*> readings;
    std::ranges::transform(order, std::back_inserter(readings), [](const auto& each) { return each.second; });
    return readings;
}

std::string Statistic::verdict() const {
    if (!limit) return "";
    if (isWithinLimit()) return fmt::format(" (at most {}: passed)", *limit);
    return fmt::format(" (at most {}: FAILED by {:.2g})", *limit, value - *limit);
}

bool Comparison::hasFailed() const {
    return !std::ranges::all_of(statistics, &Statistic::isWithinLimit);
}

std::string Comparison::verdict() const {
    if (std::ranges::none_of(statistics, [](const Statistic& each) { return each.limit.has_value(); })) return "";
    return hasFailed() ? "FAILED" : "passed";
}

std::optional<Comparison> compare(const Run& run) {
    if (run.reference == nullptr) return std::nullopt;
    Comparison comparison{};
    Differences differences;
    std::set<std::string_view> measured;
    for (const Reading& reading : run.readings) {
        if (!reading.lab) continue;
        measured.insert(reading.name);
        if (const auto difference = differenceOf(run, reading)) {
            differences.push_back(difference->deltaE);
        } else {
            comparison.notInReference.push_back(reading.name);
        }
    }
    for (const auto& [name, lab] : run.reference->patches) {
        if (!measured.contains(name)) comparison.notMeasured.push_back(name);
    }
    if (differences.empty()) return std::nullopt;
    std::ranges::sort(differences);
    comparison.statistics = statisticsOf(differences, run.reference->limits);
    comparison.patches = differences.size();
    return comparison;
}

std::string notCompared(const Comparison& comparison) {
    return listOf("Not compared, because not in the reference", comparison.notInReference) +
           listOf("Not compared, because not measured", comparison.notMeasured);
}

std::string formatComparison(const Run& run) {
    const std::optional<Comparison> comparison = compare(run);
    if (!comparison) return "";
    std::string text =
        fmt::format("\nCompared with {}\n{:<24} {:>9} {:>8} {:>8} {:>8}\n", run.reference->file.string(),
                    conditions(!run.simulation.empty()), nameOf(run.reference->formula), "dL*", "da*", "db*");
    for (const Reading* const reading : worstFirst(run)) {
        const auto difference = differenceOf(run, *reading);
        if (!difference) break;
        const auto [L, a, b] = difference->expected;
        text += fmt::format("{:<24.24} {:9.2f} {:+8.2f} {:+8.2f} {:+8.2f}\n", common::printable(reading->name),
                            difference->deltaE, reading->lab->L - L, reading->lab->a - a, reading->lab->b - b);
    }
    text += '\n';
    for (const Statistic& statistic : comparison->statistics) {
        text += fmt::format("{:<24} {:9.2f}{}\n", statistic.name, statistic.value, statistic.verdict());
    }
    if (const std::string verdict = comparison->verdict(); !verdict.empty())
        text += fmt::format("{:<24} {:>9}\n", "Tolerance", verdict);
    return text + notCompared(*comparison);
}

} // namespace spm

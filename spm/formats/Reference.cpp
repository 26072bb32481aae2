#include "spm/formats/Reference.h"

#include "common/Text.h"
#include "spm/Error.h"
#include "spm/formats/PatchFile.h"
#include "spm/formats/Table.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <functional>
#include <numeric>
#include <regex>
#include <set>
#include <sstream>
#include <string_view>

namespace spm {

namespace {

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

} // namespace

Limits parseLimits(const std::string& text) {
    static const std::regex form("(mean|median|p90|p95|max)=([0-9]{1,9}([.][0-9]{1,9})?)");
    Limits limits;
    std::istringstream items(text + ',');
    std::smatch parts;
    for (std::string item; std::getline(items, item, ',');) {
        if (!std::regex_match(item, parts, form) || limits.contains(parts[1])) {
            throw UsageError(fmt::format("--tolerance: \"{}\" is not a limit", item),
                             "use each of mean, median, p90, p95 and max at most once, with a number from 0 to "
                             "999999999, such as mean=2,max=5.5");
        }
        std::from_chars(&*parts[2].first, &*parts[2].first + parts[2].length(), limits[parts[1]]);
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

std::vector<Reading> worstFirst(const Run& run) {
    std::vector<Reading> readings = run.readings;
    std::ranges::stable_sort(readings, std::greater{}, [&](const Reading& reading) {
        const auto difference = differenceOf(run, reading);
        return difference ? difference->deltaE : -1;
    });
    return readings;
}

std::string Statistic::verdict() const {
    if (!limit) return "";
    if (isWithinLimit()) return fmt::format(" (at most {}: passed)", *limit);
    return fmt::format(" (at most {}: FAILED by {:.2g})", *limit, value - *limit);
}

std::optional<Comparison> compare(const Run& run) {
    if (run.reference == nullptr) return std::nullopt;
    Comparison comparison{};
    std::vector<double> differences;
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
    comparison.isWithinLimits = std::ranges::all_of(comparison.statistics, &Statistic::isWithinLimit);
    return comparison;
}

std::string describeUncompared(const Comparison& comparison) {
    return formatNames("Not compared, because not in the reference", comparison.notInReference) +
           formatNames("Not compared, because not measured", comparison.notMeasured);
}

std::string formatComparison(const Run& run) {
    const std::optional<Comparison> comparison = compare(run);
    if (!comparison) {
        return run.reference ? fmt::format("\nNothing to compare with {}.\n", run.reference->file.string()) : "";
    }
    std::string text = fmt::format("\nCompared with {}\n{:<24} {:>9} {:>8} {:>8} {:>8}\n", run.reference->file.string(),
                                   conditionsLabel(run), nameOf(run.reference->formula), "dL*", "da*", "db*");
    for (const Reading& reading : worstFirst(run)) {
        const auto difference = differenceOf(run, reading);
        if (!difference) break;
        const auto [L, a, b] = difference->expected;
        text += fmt::format("{:<24.24} {:9.2f} {:+8.2f} {:+8.2f} {:+8.2f}\n", common::printable(reading.name),
                            difference->deltaE, reading.lab->L - L, reading.lab->a - a, reading.lab->b - b);
    }
    text += '\n';
    for (const Statistic& statistic : comparison->statistics) {
        text += fmt::format("{:<24} {:9.2f}{}\n", statistic.name, statistic.value, statistic.verdict());
    }
    if (!run.reference->limits.empty())
        text += fmt::format("{:<24} {:>9}\n", "Tolerance", comparison->isWithinLimits ? "passed" : "FAILED");
    return text + describeUncompared(*comparison);
}

} // namespace spm

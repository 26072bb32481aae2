#include "common/Text.h"
#include "spm/formats/Columns.h"
#include "spm/formats/Formats.h"

#include <fmt/format.h>

namespace spm {

namespace {

/// The name in the width of the first column, 24.
std::string fit(const std::string& name) {
    const std::string shown = common::printable(name);
    const std::string cut = fmt::format("{:.24}", shown);
    return fmt::format("{:<24}", cut == shown ? cut : fmt::format("{:.23}\u2026", shown));
}

/// The first title is for the names: "D65/10 degree, simulated".
std::string headerLine(const Run& run, const Columns& columns) {
    std::string line = fmt::format("{:<25}", describe(run.conditions) + (run.simulation.empty() ? "" : ", simulated"));
    for (const Column& column : columns) {
        line += fmt::format("{:>9}", column.title);
    }
    return line + '\n';
}

/// A line for each patch with values.
std::string valueLines(std::span<const Patch> patches, const Columns& columns) {
    std::string lines;
    for (const Patch& patch : patches) {
        const auto numbers = numbersOf(patch, columns);
        if (!numbers.front()) continue;
        lines += fit(patch.name) + ' ';
        for (const auto& number : numbers) {
            lines += fmt::format("{:9.2f}", *number);
        }
        lines += '\n';
    }
    return lines;
}

} // namespace

std::string formatTable(const Run& run, std::span<const Patch> patches, bool withHeader) {
    const Columns columns = measuredColumns(run);
    const std::string origin = run.conditions.isCalculated ? "CIELab calculated from spectra\n" : "";
    return (withHeader ? origin + headerLine(run, columns) : "") + valueLines(patches, columns);
}

std::string formatComparison(const Run& run) {
    const std::optional<Comparison> comparison = compare(run);
    if (!comparison) return "";
    std::string text = fmt::format("\nCompared with {}: {}\n", describe(*run.reference), comparison->coverage());
    Columns columns = comparisonColumns(run);
    columns.resize(4); // without the expected values
    if (comparison->compared > 0) text += headerLine(run, columns) + valueLines(worstFirst(run), columns) + '\n';
    for (const Statistic& statistic : comparison->statistics) {
        text += fmt::format("{:<25}{:9.2f}{}\n", statistic.name, statistic.value, statistic.verdict());
    }
    if (!run.reference->limits.empty() && comparison->compared > 0)
        text += fmt::format("{:<25}{:>9}\n", "Tolerance", comparison->isWithinLimits ? "passed" : "FAILED");
    return text + describeUncompared(*comparison);
}

} // namespace spm

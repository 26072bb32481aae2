#include "spm/formats/Table.h"

#include "common/Text.h"
#include "spm/run/Comparison.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <iterator>

namespace spm {

namespace {

/// The name in the width of the first column, 24.
std::string fit(const std::string& name) {
    const std::string shown = common::printable(name);
    const std::string cut = fmt::format("{:.24}", shown);
    return fmt::format("{:<24}", cut == shown ? cut : fmt::format("{:.23}\u2026", shown));
}

/// The title of the first column: "D65/10 degree, simulated".
std::string conditionsLabel(const Run& run) {
    return fmt::format("{}/{}{}", run.conditions.illuminant, observerOf(run.conditions),
                       run.simulation.empty() ? "" : ", simulated");
}

std::string differenceLines(const Run& run) {
    std::string lines = fmt::format("{:<24} {:>9} {:>8} {:>8} {:>8}\n", conditionsLabel(run),
                                    nameOf(run.reference->formula), "dL*", "da*", "db*");
    for (const Patch& patch : worstFirst(run)) {
        const auto difference = differenceOf(run, patch);
        if (!difference) break;
        const auto& [expected, delta, deltaE] = *difference;
        lines +=
            fmt::format("{} {:9.2f} {:+8.2f} {:+8.2f} {:+8.2f}\n", fit(patch.name), deltaE, delta.L, delta.a, delta.b);
    }
    return lines + '\n';
}

} // namespace

std::string tableHeader(const Run& run) {
    return fmt::format("{}{:<24} {:>8} {:>8} {:>8}{}\n",
                       run.conditions.isCalculated ? "CIELab calculated from spectra\n" : "", conditionsLabel(run),
                       "L*", "a*", "b*", run.withXyz ? "      X      Y      Z" : "");
}

std::string labLines(const Run& run, std::span<const Patch> patches) {
    std::string lines;
    for (const Patch& patch : patches) {
        if (!patch.reading) continue;
        const SPM_LAB& lab = patch.reading->lab;
        lines += fmt::format("{} {:8.2f} {:8.2f} {:8.2f}", fit(patch.name), lab.L, lab.a, lab.b);
        if (run.withXyz) lines += fmt::format(" {:6.2f}", fmt::join(xyzOf(run, *patch.reading), " "));
        lines += '\n';
    }
    return lines;
}

std::string spectraTable(const Run& run, std::span<const Patch> patches) {
    constexpr std::size_t valuesPerLine = 5;
    std::string table;
    auto out = std::back_inserter(table);
    for (const Patch& patch : patches) {
        if (!patch.reading) continue;
        const Spectrum& spectrum = patch.reading->spectrum;
        fmt::format_to(out, "Reflectance of \"{}\" in percent{}:", common::printable(patch.name),
                       run.simulation.empty() ? "" : ", simulated");
        for (std::size_t i = 0; i < spectrum.size(); ++i) {
            fmt::format_to(out, "{}{} nm {:6.2f}", i % valuesPerLine == 0 ? "\n  " : "   ", spectrum[i].wavelength,
                           spectrum[i].value);
        }
        table += '\n';
    }
    return table;
}

std::string formatComparison(const Run& run) {
    const std::optional<Comparison> comparison = compare(run);
    if (!comparison) return "";
    std::string text = fmt::format("\nCompared with {}: {}\n", describe(*run.reference), comparison->coverage());
    if (comparison->compared > 0) text += differenceLines(run);
    for (const Statistic& statistic : comparison->statistics) {
        text += fmt::format("{:<24} {:9.2f}{}\n", statistic.name, statistic.value, statistic.verdict());
    }
    if (!run.reference->limits.empty() && comparison->compared > 0)
        text += fmt::format("{:<24} {:>9}\n", "Tolerance", comparison->isWithinLimits ? "passed" : "FAILED");
    return text + describeUncompared(*comparison);
}

} // namespace spm

#include "spm/formats/Reference.h"

#include "common/Text.h"
#include "spm/Error.h"
#include "spm/formats/DeltaE.h"
#include "spm/formats/PatchFile.h"
#include "spm/formats/Table.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <functional>
#include <iterator>
#include <numeric>
#include <set>
#include <string_view>

namespace spm {

namespace {

/// Completes a comparison that has its patches.
void summarise(Comparison& comparison) {
    std::vector<PatchDifference>& patches = comparison.patches;
    std::ranges::stable_sort(patches, std::greater{}, &PatchDifference::deltaE);
    const std::size_t count = patches.size();
    const auto add = [](double sum, const PatchDifference& patch) { return sum + patch.deltaE; };
    comparison.mean = std::accumulate(patches.begin(), patches.end(), 0.0, add) / static_cast<double>(count);
    const std::size_t rank = (95 * count + 99) / 100; // from 1 for the best
    comparison.percentile95 = patches[count - rank].deltaE;
    comparison.maximum = patches.front().deltaE;
}

void append(std::string& text, std::string_view what, const std::vector<std::string>& names) {
    if (!names.empty())
        text += fmt::format("{}: \"{}\"\n", what, common::printable(fmt::format("{}", fmt::join(names, "\", \""))));
}

} // namespace

Reference readReference(const std::filesystem::path& file) {
    Reference reference{file, {}};
    for (const Reading& patch : readPatches(file, "the reference file", PatchFileKind::reference)) {
        reference.patches.emplace(patch.name, patch.lab.value());
    }
    return reference;
}

Comparison compare(const Run& run, const Reference& reference) {
    Comparison comparison{reference.file, conditionsHead(run), {}, 0, 0, 0, {}, {}};
    std::set<std::string_view> measured;
    for (const Reading& reading : run.readings) {
        if (!reading.lab) continue;
        measured.insert(reading.name);
        const auto expected = reference.patches.find(reading.name);
        if (expected == reference.patches.end()) {
            comparison.notInReference.push_back(reading.name);
        } else {
            const double deltaE = deltaE2000(*reading.lab, expected->second);
            comparison.patches.push_back({reading.name, *reading.lab, expected->second, deltaE});
        }
    }
    for (const auto& [name, lab] : reference.patches) {
        if (!measured.contains(name)) comparison.notMeasured.push_back(name);
    }
    if (measured.empty()) {
        throw Error(fmt::format("no CIELab values were measured to compare with the reference file {}; measure the "
                                "chart's rows",
                                reference.file.string()));
    }
    if (comparison.patches.empty()) {
        throw Error(fmt::format("no patch has the name of one in the reference file {}: measured was \"{}\", the "
                                "reference has \"{}\"; name the patches as the reference does",
                                reference.file.string(), comparison.notInReference.front(),
                                comparison.notMeasured.front()));
    }
    summarise(comparison);
    return comparison;
}

std::string formatComparison(const Comparison& comparison) {
    std::string text = fmt::format("Compared with {}\n{:<24} {:>9} {:>8} {:>8} {:>8}\n", comparison.file.string(),
                                   comparison.conditions, "CIEDE2000", "dL*", "da*", "db*");
    for (const PatchDifference& patch : comparison.patches) {
        text += fmt::format("{:<24.24} {:9.2f} {:+8.2f} {:+8.2f} {:+8.2f}\n", common::printable(patch.name),
                            patch.deltaE, patch.measured.L - patch.expected.L, patch.measured.a - patch.expected.a,
                            patch.measured.b - patch.expected.b);
    }
    text += fmt::format("\n{:<24} {:9.2f}\n{:<24} {:9.2f}   (nearest rank)\n{:<24} {:9.2f}\n", "mean", comparison.mean,
                        "95th percentile", comparison.percentile95, "maximum", comparison.maximum);
    append(text, "Not compared, because not in the reference", comparison.notInReference);
    append(text, "Not compared, because not measured", comparison.notMeasured);
    return text;
}

} // namespace spm

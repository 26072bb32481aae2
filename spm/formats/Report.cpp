// Fills the template in report.html. The template is also well-formed XML, so that tools for either can read the page.
// Its lines and tints are translucent, to be visible on light and dark backgrounds. Optional sections don't start on
// their own line: if one is left out, its line would remain as a blank one. The curves of spectra are in nm and
// percent; the template transforms them.

#include "common/Text.h"
#include "spm/formats/Columns.h"
#include "spm/formats/Formats.h"

#include <fmt/format.h>
#include <kainjow/mustache.hpp>

namespace spm {

namespace {

using kainjow::mustache::data;
using kainjow::mustache::list;
using kainjow::mustache::object;

std::string colour(const Run& run, const SPM_LAB& lab) {
    return toSrgb(lab, whitePoint(run.conditions));
}

/// The CSS background of a patch: the measured colour; in a comparison next to the expected one, or to nothing.
std::string background(const Run& run, const Patch& patch) {
    std::string measured = colour(run, patch.reading->lab);
    if (run.reference == nullptr) return measured;
    const auto difference = differenceOf(run, patch);
    return fmt::format("linear-gradient(90deg, {} 50%, {} 50%)", measured,
                       difference ? colour(run, difference->expected) : "transparent");
}

/// The numbers of a patch with their titles, and a dash for each missing one.
list cellsOf(const Patch& patch, const Columns& columns) {
    const auto numbers = numbersOf(patch, columns);
    list cells;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        cells.push_back(
            object{{"title", columns[i].title}, {"value", numbers[i] ? fmt::format("{:.2f}", *numbers[i]) : "\u2013"}});
    }
    return cells;
}

list patchItems(const Run& run, const std::vector<Patch>& patches, const Columns& columns) {
    list items;
    for (const Patch& patch : patches) {
        object item{{"name", common::printable(patch.name)}, {"cells", cellsOf(patch, columns)}};
        if (run.patchesInRow > 0 && items.size() % static_cast<std::size_t>(run.patchesInRow) == 0) {
            item["row"] = std::to_string(items.size() / static_cast<std::size_t>(run.patchesInRow) + 1);
        }
        if (patch.reading) item["fill"] = background(run, patch);
        items.push_back(item);
    }
    return items;
}

object comparisonOf(const Run& run, const Comparison& comparison) {
    const Reference& reference = *run.reference;
    list statistics;
    for (const Statistic& statistic : comparison.statistics) {
        statistics.push_back(
            object{{"name", statistic.name}, {"value", fmt::format("{:.2f}{}", statistic.value, statistic.verdict())}});
    }
    return {{"file", common::printable(describe(reference))},
            {"compared", comparison.coverage()},
            {"statistics", statistics},
            {"passed", comparison.isWithinLimits},
            {"hasLimits", !reference.limits.empty() && comparison.compared > 0},
            {"notCompared", describeUncompared(comparison)}};
}

/// Each curve has the patch's colour. An outline in the template keeps light curves visible on white, and dark ones on
/// black.
list curvesOf(const Run& run) {
    list curves;
    for (const Patch& patch : run.patches) {
        if (!patch.reading || patch.reading->spectrum.empty()) continue;
        std::string points;
        for (const auto& [wavelength, percent] : patch.reading->spectrum) {
            points += fmt::format("{},{:.2f} ", wavelength, percent);
        }
        curves.push_back(object{
            {"name", common::printable(patch.name)}, {"stroke", colour(run, patch.reading->lab)}, {"points", points}});
    }
    return curves;
}

} // namespace

std::string htmlReport(const Run& run) {
    const Columns columns = joined({measuredColumns(run), comparisonColumns(run)});
    list notMeasured;
    for (const std::string& gap : gaps(run)) {
        notMeasured.push_back(object{{"text", gap}});
    }
    object page{{"title", run.simulation.empty() ? "Measurement" : "Simulated measurement"},
                {"started", run.started},
                {"module", run.module},
                {"version", run.version},
                {"coverage", coverage(run)},
                {"notMeasured", notMeasured},
                {"patches", patchItems(run, run.patches, columns)},
                {"titles", cellsOf({}, columns)},
                {"values", patchItems(run, worstFirst(run), columns)},
                {"curves", curvesOf(run)}};
    for (const auto& [fact, text] : factsOf(run)) {
        if (!text.empty()) page[fact] = common::printable(text);
    }
    page["many"] = run.patches.size() > 100;
    page["hasRows"] = run.patchesInRow > 0;
    page["hasSpectra"] = !spectralColumns(run).empty();
    if (const auto comparison = compare(run)) page["comparison"] = comparisonOf(run, *comparison);
    kainjow::mustache::mustache view(reportTemplate);
    return view.render(data(page));
}

} // namespace spm

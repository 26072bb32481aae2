// Fills the template in report.html. The template is also well-formed XML, so that tools for either can read the page.
// Its lines and tints are translucent, to be visible on light and dark backgrounds. Optional sections don't start on
// their own line: if one is left out, its line would remain as a blank one.

#include "spm/formats/Report.h"

#include "common/Text.h"
#include "spm/colour/Srgb.h"
#include "spm/run/Comparison.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <initializer_list>
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

std::string formatLab(const SPM_LAB& lab) {
    return fmt::format("{:.2f} {:.2f} {:.2f}", lab.L, lab.a, lab.b);
}

template <class... Numbers>
void appendCells(list& cells, const char* format, Numbers... numbers) {
    (cells.push_back(object{{"value", fmt::format(fmt::runtime(format), numbers)}}), ...);
}

void appendLab(list& cells, const char* format, const SPM_LAB& lab) {
    appendCells(cells, format, lab.L, lab.a, lab.b);
}

/// The titles of the table's columns of numbers.
list columnTitles(const Run& run) {
    list titles;
    const auto append = [&](std::initializer_list<const char*> more) {
        for (const char* const title : more) {
            titles.push_back(object{{"title", title}});
        }
    };
    append({"L*", "a*", "b*"});
    if (run.withXyz) append({"X", "Y", "Z"});
    if (run.reference) append({nameOf(run.reference->formula), "dL*", "da*", "db*", "L* exp.", "a* exp.", "b* exp."});
    return titles;
}

/// The numbers of a patch, with a dash for each missing one.
list cellsOf(const Run& run, const Patch& patch, std::size_t columns) {
    list cells;
    if (patch.reading) {
        appendLab(cells, "{:.2f}", patch.reading->lab);
        if (run.withXyz) {
            const auto [x, y, z] = xyzOf(run, *patch.reading);
            appendCells(cells, "{:.2f}", x, y, z);
        }
    }
    if (const auto difference = differenceOf(run, patch)) {
        appendCells(cells, "{:.2f}", difference->deltaE);
        appendLab(cells, "{:+.2f}", difference->delta);
        appendLab(cells, "{:.2f}", difference->expected);
    }
    while (cells.size() < columns) {
        cells.push_back(object{{"value", "\u2013"}});
    }
    return cells;
}

list patchItems(const Run& run, const std::vector<Patch>& patches) {
    const std::size_t columns = columnTitles(run).size();
    list items;
    for (const Patch& patch : patches) {
        object item{{"name", common::printable(patch.name)}, {"cells", cellsOf(run, patch, columns)}};
        if (run.patchesInRow > 0 && items.size() % static_cast<std::size_t>(run.patchesInRow) == 0) {
            item["row"] = std::to_string(items.size() / static_cast<std::size_t>(run.patchesInRow) + 1);
        }
        if (patch.reading) {
            item["fill"] = background(run, patch);
            item["measured"] = formatLab(patch.reading->lab);
        }
        if (const auto difference = differenceOf(run, patch)) {
            item["expected"] = formatLab(difference->expected);
            item["deltaE"] = fmt::format("{:.2f}", difference->deltaE);
        }
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
    object section{{"file", common::printable(describe(reference))},
                   {"formula", nameOf(reference.formula)},
                   {"compared", comparison.coverage()},
                   {"statistics", statistics},
                   {"passed", comparison.isWithinLimits},
                   {"hasLimits", !reference.limits.empty() && comparison.compared > 0}};
    if (const std::string text = describeUncompared(comparison); !text.empty()) section["notCompared"] = text;
    return section;
}

/// Maps wavelengths and reflectance to SVG coordinates; the template repeats the dimensions. The axes cover at least
/// 380 nm to 730 nm and 0 to 100 percent.
class Axes {
public:
    explicit Axes(const std::vector<Patch>& patches) {
        for (const Patch& patch : patches) {
            if (patch.reading)
                std::ranges::for_each(patch.reading->spectrum, [&](const auto& point) { extendTo(point); });
        }
    }

    std::string x(std::int32_t wavelength) const {
        return fmt::format("{:.1f}", left + width * (wavelength - first) / (last - first));
    }
    std::string y(double percent) const {
        return fmt::format("{:.1f}", bottom - height * std::clamp(percent, 0.0, top) / top);
    }

    list percents() const {
        list lines;
        for (int percent = 0; percent <= top; percent += 20) {
            lines.push_back(object{{"percent", std::to_string(percent)}, {"y", y(percent)}});
        }
        return lines;
    }

    list wavelengths() const {
        list lines;
        for (int wavelength = static_cast<int>(std::ceil(first / 50)) * 50; wavelength <= last; wavelength += 50) {
            lines.push_back(object{{"wavelength", std::to_string(wavelength)}, {"x", x(wavelength)}});
        }
        return lines;
    }

private:
    static constexpr double left = 56;
    static constexpr double bottom = 352;
    static constexpr double width = 560;
    static constexpr double height = 320;

    void extendTo(const SPM_REFLECTION& reflection) {
        // Fluorescent patches exceed 100 percent. Far larger values are errors, which must not flatten the other
        // curves.
        constexpr double highest = 200;
        first = std::min(first, static_cast<double>(reflection.wavelength));
        last = std::max(last, static_cast<double>(reflection.wavelength));
        top = std::clamp(20 * std::ceil(static_cast<double>(reflection.value) / 20), top, highest);
    }

    double first = 380;
    double last = 730;
    double top = 100;
};

std::string pointsOf(const Spectrum& spectrum, const Axes& axes) {
    std::string points;
    for (const SPM_REFLECTION& reflection : spectrum) {
        points += fmt::format("{}{},{}", points.empty() ? "" : " ", axes.x(reflection.wavelength),
                              axes.y(static_cast<double>(reflection.value)));
    }
    return points;
}

/// Each curve has the patch's colour. An outline in the template keeps light curves visible on white, and dark ones on
/// black.
list curvesOf(const Run& run, const Axes& axes) {
    list curves;
    for (const Patch& patch : run.patches) {
        if (!patch.reading) continue;
        curves.push_back(object{{"name", common::printable(patch.name)},
                                {"stroke", colour(run, patch.reading->lab)},
                                {"points", pointsOf(patch.reading->spectrum, axes)}});
    }
    return curves;
}

object spectraOf(const Run& run) {
    const Axes axes(run.patches);
    return {{"percents", axes.percents()},
            {"wavelengths", axes.wavelengths()},
            {"curves", curvesOf(run, axes)},
            {"many", run.patches.size() > 100}};
}

} // namespace

std::string htmlReport(const Run& run) {
    list notMeasured;
    for (const std::string& gap : gaps(run)) {
        notMeasured.push_back(object{{"text", gap}});
    }
    object page{{"title", run.simulation.empty() ? "Measurement" : "Simulated measurement"},
                {"started", run.started},
                {"module", run.module},
                {"version", run.version},
                {"illuminant", run.conditions.illuminant},
                {"observer", observerOf(run.conditions)},
                {"colorimetry", colorimetryOf(run.conditions)},
                {"measurement", run.conditions.measurement},
                {"coverage", coverage(run)},
                {"notMeasured", notMeasured},
                {"patches", patchItems(run, run.patches)},
                {"titles", columnTitles(run)},
                {"values", patchItems(run, worstFirst(run))}};
    if (const auto comparison = compare(run)) page["comparison"] = comparisonOf(run, *comparison);
    if (!run.chart.empty()) page["chart"] = common::printable(run.chart);
    if (!run.simulation.empty()) page["simulation"] = run.simulation;
    if (run.patchesInRow > 0) page["patchesInRow"] = std::to_string(run.patchesInRow);
    if (!wavelengths(run).empty()) page["spectra"] = spectraOf(run);
    kainjow::mustache::mustache view(reportTemplate);
    return view.render(data(page));
}

} // namespace spm

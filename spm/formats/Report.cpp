// Fills the template in report.html. The template is also well-formed XML, so that tools for either can read the page.
// Its lines and tints are translucent, to be visible on light and dark backgrounds. Optional sections don't start on
// their own line: if one is left out, its line would remain as a blank one.

#include "spm/formats/Report.h"

#include "common/Text.h"
#include "spm/formats/Reference.h"
#include "spm/formats/Swatch.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <kainjow/mustache.hpp>

namespace spm {

namespace {

using kainjow::mustache::data;
using kainjow::mustache::list;
using kainjow::mustache::object;

std::string colour(const SPM_LAB& lab) {
    const auto rgb = toSrgb(lab);
    return fmt::format("#{:02x}{:02x}{:02x}", rgb[0], rgb[1], rgb[2]);
}

/// The CSS background of a patch: the measured colour, next to the expected one if there is one.
std::string background(const Run& run, const Reading& reading) {
    const auto difference = differenceOf(run, reading);
    if (!difference) return colour(*reading.lab);
    return fmt::format("linear-gradient(90deg, {} 50%, {} 50%)", colour(*reading.lab), colour(difference->expected));
}

std::string formatLab(const SPM_LAB& lab) {
    return fmt::format("{:.2f} {:.2f} {:.2f}", lab.L, lab.a, lab.b);
}

list labOf(const Reading& reading) {
    list values;
    for (const auto value : {&SPM_LAB::L, &SPM_LAB::a, &SPM_LAB::b}) {
        values.push_back(object{{"value", reading.lab ? fmt::format("{:.2f}", (*reading.lab).*value) : "\u2013"}});
    }
    return values;
}

list patchesOf(const Run& run, const std::vector<Reading>& readings) {
    list patches;
    for (const Reading& reading : readings) {
        const auto difference = differenceOf(run, reading);
        object patch{{"name", common::printable(reading.name)},
                     {"lab", labOf(reading)},
                     {"deltaE", difference ? fmt::format("{:.2f}", difference->deltaE) : "\u2013"}};
        if (reading.lab) patch["fill"] = background(run, reading);
        if (reading.lab) patch["measured"] = formatLab(*reading.lab);
        if (difference) patch["expected"] = formatLab(difference->expected);
        patches.push_back(patch);
    }
    return patches;
}

object comparisonOf(const Run& run, const Comparison& comparison) {
    const Reference& reference = *run.reference;
    list statistics;
    for (const Statistic& statistic : comparison.statistics) {
        statistics.push_back(
            object{{"name", statistic.name}, {"value", fmt::format("{:.2f}{}", statistic.value, statistic.verdict())}});
    }
    object section{{"file", common::printable(reference.file.string())},
                   {"formula", nameOf(reference.formula)},
                   {"compared", fmt::format("{} of {} patches", comparison.patches, run.readings.size())},
                   {"statistics", statistics},
                   {"passed", comparison.isWithinLimits},
                   {"hasLimits", !reference.limits.empty()}};
    if (const std::string text = describeUncompared(comparison); !text.empty()) section["notCompared"] = text;
    return section;
}

/// Maps wavelengths and reflectance to SVG coordinates; the template repeats the dimensions. The axes cover at least
/// 380 nm to 730 nm and 0 to 100 percent.
class Axes {
public:
    explicit Axes(const std::vector<Reading>& readings) {
        for (const Reading& reading : readings) {
            for (const SPM_REFLECTION& reflection : reading.spectrum) {
                extendTo(reflection);
            }
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

std::string pointsOf(const Reading& reading, const Axes& axes) {
    std::string points;
    for (const SPM_REFLECTION& reflection : reading.spectrum) {
        points += fmt::format("{}{},{}", points.empty() ? "" : " ", axes.x(reflection.wavelength),
                              axes.y(static_cast<double>(reflection.value)));
    }
    return points;
}

/// Each curve has the patch's colour or, without CIELab values, the text colour. An outline in the template keeps light
/// curves visible on white, and dark ones on black.
list curvesOf(const std::vector<Reading>& readings, const Axes& axes) {
    list curves;
    for (const Reading& reading : readings) {
        if (reading.spectrum.empty()) continue;
        curves.push_back(object{{"name", common::printable(reading.name)},
                                {"stroke", reading.lab ? colour(*reading.lab) : "currentColor"},
                                {"points", pointsOf(reading, axes)}});
    }
    return curves;
}

} // namespace

std::string htmlReport(const Run& run) {
    requireValues(run);
    list notMeasured;
    object page{{"title", run.simulation.empty() ? "Measurement" : "Simulated measurement"},
                {"started", run.started},
                {"module", run.module},
                {"version", run.version},
                {"illuminant", run.conditions.illuminant},
                {"observer", observerOf(run.conditions)},
                {"colorimetry", colorimetryOf(run.conditions)},
                {"measurement", run.conditions.measurement},
                {"coverage", coverage(run)},
                {"patches", patchesOf(run, run.readings)},
                {"values", hasLab(run)},
                {"rows", patchesOf(run, worstFirst(run))}};
    if (const auto comparison = compare(run)) page["comparison"] = comparisonOf(run, *comparison);
    for (const Gap& gap : gaps(run)) {
        notMeasured.push_back(object{{"text", describe(gap)}});
    }
    page["notMeasured"] = notMeasured;
    if (!run.simulation.empty()) page["simulation"] = run.simulation;
    if (run.patchesInRow > 0) page["patchesInRow"] = std::to_string(run.patchesInRow);
    if (!wavelengths(run).empty()) {
        const Axes axes(run.readings);
        page["spectra"] = object{{"percents", axes.percents()},
                                 {"wavelengths", axes.wavelengths()},
                                 {"curves", curvesOf(run.readings, axes)},
                                 {"many", run.readings.size() > 100}};
    }
    kainjow::mustache::mustache view(reportTemplate);
    return view.render(data(page));
}

} // namespace spm

#include "host/Report.h"

#include "host/Swatch.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <string_view>

namespace host {

namespace {

/// What is the same on every page, up to the text of its title. Elements are closed as in XML, so that tools for
/// either can read it. Lines and tints are half transparent: they show on a light ground and on a dark one.
constexpr std::string_view head = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8"/>
<meta name="viewport" content="width=device-width, initial-scale=1"/>
<style>
:root { color-scheme: light dark; font: 1rem/1.4 system-ui, sans-serif; }
body { max-width: 50rem; margin: 0 auto; padding: 1rem; }
h2 { margin: 2rem 0 .75rem; break-after: avoid; }
.simulated { padding: .75rem 1rem; border: .2rem solid #d70; background: #f802; }
dl { display: grid; grid-template-columns: max-content 1fr; gap: .2rem 1rem; }
dd { margin: 0; overflow-wrap: anywhere; }
ol { display: grid; gap: .5rem; margin: 0; padding: 0; list-style: none; overflow-x: auto;
  grid-template-columns: repeat(auto-fill, minmax(6rem, 1fr)); }
ol.rows { grid-template-columns: repeat(var(--patches), minmax(3rem, 1fr)); }
li { font-size: .75rem; text-align: center; overflow-wrap: anywhere; break-inside: avoid; }
li span { display: block; height: 3.5rem; margin-bottom: .2rem; border: 1px solid #8886;
  print-color-adjust: exact; -webkit-print-color-adjust: exact; forced-color-adjust: none; }
li span:not([style]) { border: 1px dashed; }
table { border-collapse: collapse; font-variant-numeric: tabular-nums; }
caption { text-align: left; padding-bottom: .5rem; }
th, td { padding: .2rem .75rem; border-bottom: 1px solid #8886; text-align: right; }
th:first-child { padding-left: 0; text-align: left; }
tbody th { font-weight: normal; overflow-wrap: anywhere; }
tr, svg { break-inside: avoid; }
svg { display: block; width: 100%; height: auto; font-size: 13px; fill: currentColor; }
polyline { fill: none; stroke-width: 2; stroke-linejoin: round; }
polyline.edge { stroke: CanvasText; stroke-width: 3.5; opacity: .4; }
g:hover polyline { stroke-width: 5; }
.grid { stroke: #8886; }
.below { text-anchor: middle; }
.beside { text-anchor: end; dominant-baseline: central; }
@media (max-width: 40rem) { svg { font-size: 18px; } }
@media print { ol.rows { grid-template-columns: repeat(var(--patches), minmax(0, 1fr)); } }
</style>
<title>)";

/// What stands for a value that was not measured, or that is no number.
constexpr std::string_view noValue = "&#8211;";

std::string escapedCharacter(char character) {
    switch (character) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    default:
        // Control characters are no text in HTML, however they are written.
        const auto code = static_cast<unsigned char>(character);
        return {code < ' ' || code == 0x7f ? ' ' : character};
    }
}

std::string escaped(std::string_view text) {
    std::string result;
    for (const char character : text) {
        result += escapedCharacter(character);
    }
    return result;
}

bool hasColour(const Reading& reading) {
    return reading.lab && std::isfinite(reading.lab->L) && std::isfinite(reading.lab->a) &&
           std::isfinite(reading.lab->b);
}

std::string colour(const SPM_LAB& lab) {
    const auto rgb = toSrgb(lab);
    return fmt::format("#{:02x}{:02x}{:02x}", rgb[0], rgb[1], rgb[2]);
}

std::string number(float value) {
    return std::isfinite(value) ? fmt::format("{:.2f}", value) : std::string(noValue);
}

std::string conditions(const Run& run) {
    std::string text;
    if (!run.simulation.empty()) {
        text = fmt::format("<p class=\"simulated\"><strong>Simulated:</strong> no instrument was used. The values come "
                           "from a {}.</p>\n",
                           escaped(run.simulation));
    }
    return text + fmt::format("<dl>\n<dt>Started</dt><dd>{}</dd>\n<dt>Module</dt><dd>{}</dd>\n"
                              "<dt>Version</dt><dd>{}</dd>\n<dt>Illuminant</dt><dd>D65</dd>\n"
                              "<dt>Observer</dt><dd>10 degree</dd>\n</dl>\n",
                              escaped(run.started), escaped(run.module), run.version);
}

std::string chart(const Run& run) {
    std::string text = "<h2>Patches</h2>\n<ol>\n";
    if (run.patchesInRow > 0) {
        text = fmt::format("<h2>Patches</h2>\n<ol class=\"rows\" style=\"--patches: {}\">\n", run.patchesInRow);
    }
    for (const Reading& reading : run.readings) {
        const std::string style =
            hasColour(reading) ? fmt::format(" style=\"background: {}\"", colour(*reading.lab)) : "";
        text += fmt::format("<li><span{}></span>{}</li>\n", style, escaped(reading.name));
    }
    return text + "</ol>\n";
}

std::string valueRow(const Reading& reading) {
    std::string cells;
    for (const auto value : {&SPM_LAB::L, &SPM_LAB::a, &SPM_LAB::b}) {
        cells += fmt::format("<td>{}</td>", reading.lab ? number((*reading.lab).*value) : noValue);
    }
    return fmt::format("<tr><th scope=\"row\">{}</th>{}</tr>\n", escaped(reading.name), cells);
}

std::string valueTable(const std::vector<Reading>& readings) {
    const auto isMeasured = [](const Reading& reading) { return reading.lab.has_value(); };
    if (std::none_of(readings.begin(), readings.end(), isMeasured)) return {};
    std::string text = "<h2>Values</h2>\n<table>\n<caption>CIELab for D65 and 10 degree</caption>\n<thead><tr>"
                       "<th scope=\"col\">Patch</th><th scope=\"col\">L*</th><th scope=\"col\">a*</th>"
                       "<th scope=\"col\">b*</th></tr></thead>\n<tbody>\n";
    for (const Reading& reading : readings) {
        text += valueRow(reading);
    }
    return text + "</tbody>\n</table>\n";
}

/// The drawing's coordinates, in its own units. It shows at least 380 nm to 730 nm and 0 to 100 percent.
class Axes {
public:
    explicit Axes(const std::vector<Reading>& readings) {
        for (const Reading& reading : readings) {
            for (const SPM_REFLECTION& reflection : reading.spectrum) {
                extendTo(reflection);
            }
        }
    }

    double x(std::int32_t wavelength) const { return left + width * (wavelength - first) / (last - first); }
    double y(double percent) const { return bottom - height * std::clamp(percent, 0.0, top) / top; }
    std::string grid() const;

private:
    static constexpr double left = 56;
    static constexpr double bottom = 352;
    static constexpr double width = 560;
    static constexpr double height = 320;

    void extendTo(const SPM_REFLECTION& reflection) {
        // A fluorescent patch gives more than the perfect diffuser; far more is an error that is not to flatten the
        // other curves.
        constexpr double highest = 200;
        first = std::min(first, static_cast<double>(reflection.wavelength));
        last = std::max(last, static_cast<double>(reflection.wavelength));
        if (!std::isfinite(reflection.value)) return;
        top = std::clamp(20 * std::ceil(static_cast<double>(reflection.value) / 20), top, highest);
    }

    double first = 380;
    double last = 730;
    double top = 100;
};

std::string Axes::grid() const {
    std::string text;
    for (int percent = 0; percent <= top; percent += 20) {
        text += fmt::format("<path class=\"grid\" d=\"M{} {:.1f}h{}\"/><text class=\"beside\" x=\"{}\" y=\"{:.1f}\">{}"
                            "</text>\n",
                            left, y(percent), width, left - 8, y(percent), percent);
    }
    for (int wavelength = static_cast<int>(std::ceil(first / 50)) * 50; wavelength <= last; wavelength += 50) {
        text += fmt::format("<path class=\"grid\" d=\"M{:.1f} {}v-{}\"/><text class=\"below\" x=\"{:.1f}\" y=\"{}\">{}"
                            "</text>\n",
                            x(wavelength), bottom, height, x(wavelength), bottom + 20, wavelength);
    }
    return text + fmt::format("<text x=\"{}\" y=\"14\">Reflectance in %</text>\n"
                              "<text class=\"below\" x=\"{}\" y=\"{}\">Wavelength in nm</text>\n",
                              8, left + width / 2, bottom + 46);
}

/// In the patch's colour, or in the text's when it has none; the edge shows light curves on white and dark ones on
/// black.
std::string curve(const Reading& reading, const Axes& axes) {
    std::string points;
    for (const SPM_REFLECTION& reflection : reading.spectrum) {
        if (!std::isfinite(reflection.value)) continue;
        points += fmt::format("{}{:.1f},{:.1f}", points.empty() ? "" : " ", axes.x(reflection.wavelength),
                              axes.y(static_cast<double>(reflection.value)));
    }
    return fmt::format("<g stroke=\"{}\"><title>{}</title>\n<polyline class=\"edge\" points=\"{}\"/>\n"
                       "<polyline points=\"{}\"/></g>\n",
                       hasColour(reading) ? colour(*reading.lab) : "currentColor", escaped(reading.name), points,
                       points);
}

std::string spectra(const std::vector<Reading>& readings) {
    const Axes axes(readings);
    std::string curves;
    for (const Reading& reading : readings) {
        if (!reading.spectrum.empty()) curves += curve(reading, axes);
    }
    if (curves.empty()) return {};
    return fmt::format("<h2>Spectra</h2>\n<svg viewBox=\"0 0 640 408\" role=\"img\" aria-labelledby=\"spectra\">\n"
                       "<title id=\"spectra\">Reflectance in percent by wavelength in nm, a curve for each patch"
                       "</title>\n{}{}</svg>\n",
                       axes.grid(), curves);
}

} // namespace

std::string htmlReport(const Run& run) {
    const std::string title = run.simulation.empty() ? "Measurement" : "Simulated measurement";
    return fmt::format("{}{} {}</title>\n</head>\n<body>\n<h1>{}</h1>\n{}{}{}{}</body>\n</html>\n", head, title,
                       escaped(run.started), title, conditions(run), chart(run), valueTable(run.readings),
                       spectra(run.readings));
}

} // namespace host

#include "spm/formats/Table.h"

#include "common/Text.h"
#include "spm/formats/Sparkline.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <iterator>

namespace spm {

namespace {

constexpr std::size_t valuesPerLine = 5;

} // namespace

std::string conditionsLabel(const Run& run) {
    return fmt::format("{}/{}{}", run.conditions.illuminant, observerOf(run.conditions),
                       run.simulation.empty() ? "" : ", simulated");
}

std::string labTable(const Run& run, std::span<const Reading> readings, ColourDepth depth) {
    std::string table = run.conditions.isCalculated ? "CIELab calculated from spectra\n" : "";
    auto out = std::back_inserter(table);
    fmt::format_to(out, "{:{}}{:<24} {:>8} {:>8} {:>8}{}\n", "", depth == ColourDepth::none ? 0 : 7,
                   conditionsLabel(run), "L*", "a*", "b*", run.withXyz ? "      X      Y      Z" : "");
    for (const Reading& reading : readings) {
        if (!reading.lab) continue;
        const SPM_LAB& lab = *reading.lab;
        fmt::format_to(out, "{}{:<24.24} {:8.2f} {:8.2f} {:8.2f}", swatch(lab, depth), common::printable(reading.name),
                       lab.L, lab.a, lab.b);
        if (const auto xyz = xyzOf(run, reading)) fmt::format_to(out, " {:6.2f}", fmt::join(*xyz, " "));
        table += '\n';
    }
    return table;
}

std::string spectraTable(const Run& run, std::span<const Reading> readings, ColourDepth depth) {
    std::string table;
    auto out = std::back_inserter(table);
    for (const Reading& reading : readings) {
        if (reading.spectrum.empty()) continue;
        fmt::format_to(out, "Reflectance of \"{:.24}\" in percent{}:", common::printable(reading.name),
                       run.simulation.empty() ? "" : ", simulated");
        if (depth != ColourDepth::none) fmt::format_to(out, "\n  {}", sparkline(reading.spectrum));
        for (std::size_t i = 0; i < reading.spectrum.size(); ++i) {
            fmt::format_to(out, "{}{} nm {:6.2f}", i % valuesPerLine == 0 ? "\n  " : "   ",
                           reading.spectrum[i].wavelength, reading.spectrum[i].value);
        }
        table += '\n';
    }
    return table;
}

} // namespace spm

#include "spm/formats/Table.h"

#include "common/Text.h"
#include "spm/formats/Sparkline.h"

#include <fmt/format.h>
#include <iterator>

namespace spm {

namespace {

constexpr std::size_t valuesPerLine = 5;

} // namespace

std::string conditions(bool isSimulated) {
    return fmt::format("{}/{}{}", illuminant, observer, isSimulated ? ", simulated" : "");
}

std::string labTable(std::span<const Reading> readings, bool isSimulated, ColourDepth depth) {
    std::string table;
    auto out = std::back_inserter(table);
    fmt::format_to(out, "{:{}}{:<24} {:>8} {:>8} {:>8}\n", "", depth == ColourDepth::none ? 0 : 7,
                   conditions(isSimulated), "L*", "a*", "b*");
    for (const Reading& reading : readings) {
        if (!reading.lab) continue;
        const SPM_LAB& lab = *reading.lab;
        fmt::format_to(out, "{}{:<24.24} {:8.2f} {:8.2f} {:8.2f}\n", swatch(lab, depth),
                       common::printable(reading.name), lab.L, lab.a, lab.b);
    }
    return table;
}

std::string spectraTable(std::span<const Reading> readings, bool isSimulated, ColourDepth depth) {
    std::string table;
    auto out = std::back_inserter(table);
    for (const Reading& reading : readings) {
        if (reading.spectrum.empty()) continue;
        fmt::format_to(out, "Reflectance of \"{:.24}\" in percent{}:", common::printable(reading.name),
                       isSimulated ? ", simulated" : "");
        if (depth != ColourDepth::none) fmt::format_to(out, "\n  {}", spectralCurve(reading.spectrum));
        for (std::size_t i = 0; i < reading.spectrum.size(); ++i) {
            fmt::format_to(out, "{}{} nm {:6.2f}", i % valuesPerLine == 0 ? "\n  " : "   ",
                           reading.spectrum[i].wavelength, reading.spectrum[i].value);
        }
        table += '\n';
    }
    return table;
}

} // namespace spm

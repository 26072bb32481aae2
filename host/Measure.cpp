#include "host/Measure.h"

#include "host/HostError.h"
#include "host/Instrument.h"
#include "host/Swatch.h"

#include <chrono>
#include <fmt/format.h>
#include <fstream>
#include <thread>

namespace host {

namespace {

using Names = std::vector<std::string>;

Names readNames(const std::filesystem::path& chart) {
    std::ifstream file(chart);
    if (!file) throw HostError(fmt::format("can't read the chart file {}", chart.string()));
    Names names;
    std::string line;
    std::getline(file, line);
    while (std::getline(file, line)) {
        names.push_back(line.substr(0, line.find_first_of(",\r")));
    }
    return names;
}

Names numberedNames(std::size_t count) {
    Names names;
    for (std::size_t i = 1; i <= count; ++i) {
        names.push_back(fmt::format("patch {}", i));
    }
    return names;
}

Names patchNames(const MeasureOptions& options) {
    const auto count = static_cast<std::size_t>(options.rows) * static_cast<std::size_t>(options.patches);
    if (options.chart.empty()) return numberedNames(count);
    Names names = readNames(options.chart);
    if (names.size() < count) {
        throw HostError(fmt::format("the chart file {} names {} patches, but {} rows of {} are to be measured",
                                    options.chart.string(), names.size(), options.rows, options.patches));
    }
    return names;
}

void prompt(const std::string& text) {
    fmt::print("\n{}\n", text);
    std::fflush(stdout);
}

void waitForButton() {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

void printModule(const Module& module, const MeasureOptions& options) {
    fmt::print("Module {}, version {}\n", options.module.string(), module.getVersion(nullptr));
    const std::string simulation = module.simulation();
    if (simulation.empty()) return;
    fmt::print("SIMULATED: no instrument is used. The values come from a {}.\n", simulation);
}

void printPatch(const std::string& name, const SPM_LAB& lab, ColourDepth depth) {
    fmt::print("{}{:<24} {:8.2f} {:8.2f} {:8.2f}\n", swatch(lab, depth), name, lab.L, lab.a, lab.b);
}

void measureRow(Instrument& instrument, std::int32_t row, const MeasureOptions& options, const Names& names) {
    const auto patches = static_cast<std::size_t>(options.patches);
    const auto first = names.begin() + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(row) * patches);
    prompt(fmt::format("Row {} of {}: press the button and slide the instrument from \"{}\" to \"{}\".", row + 1,
                       options.rows, *first, *(first + options.patches - 1)));
    const std::vector<SPM_LAB> values = instrument.read(options.patches, waitForButton);
    if (values.size() < patches) {
        throw HostError(fmt::format("row {}: {} of {} patches were found; slide more slowly, from white to white",
                                    row + 1, values.size(), patches));
    }
    const ColourDepth depth = colourDepth(isTerminal(stdout));
    fmt::print("{:{}}{:<24} {:>8} {:>8} {:>8}   (D65, 10 degree)\n", "", depth == ColourDepth::none ? 0 : 7, "", "L*",
               "a*", "b*");
    for (std::size_t i = 0; i < patches; ++i) {
        printPatch(*(first + static_cast<std::ptrdiff_t>(i)), values[i], depth);
    }
}

void measureSpot(Instrument& instrument, const std::string& name) {
    prompt(fmt::format("Spectrum: place the instrument on \"{}\" and press the button.", name));
    constexpr std::size_t perLine = 6;
    const Instrument::Spectrum spectrum = instrument.readSpectrum(waitForButton);
    fmt::print("Reflectance of \"{}\" in percent:", name);
    for (std::size_t i = 0; i < spectrum.size(); ++i) {
        fmt::print("{}{} nm {:6.2f}", i % perLine == 0 ? "\n  " : "   ", spectrum[i].wavelength, spectrum[i].value);
    }
    fmt::print("\n");
}

} // namespace

void measure(const MeasureOptions& options) {
    const Names names = patchNames(options);
    const Module module(options.module);
    printModule(module, options);
    Instrument instrument(module);

    prompt("Calibration: place the instrument on its white reference and press the button.");
    instrument.calibrate(waitForButton);
    fmt::print("Calibrated.\n");

    for (std::int32_t row = 0; row < options.rows; ++row) {
        measureRow(instrument, row, options, names);
    }
    measureSpot(instrument, names.front());
}

} // namespace host

#include "host/Formats.h"
#include "host/HostError.h"
#include "host/Values.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

namespace host {

namespace {

/// The columns of values that all readings have.
struct Columns {
    bool lab = false;
    std::vector<std::int32_t> wavelengths{};
    bool areAll = false;
};

Columns commonColumns(const Run& run) {
    const auto all = [&](const auto& has) { return std::all_of(run.readings.begin(), run.readings.end(), has); };
    Columns columns;
    columns.lab = all([](const Reading& reading) { return reading.lab.has_value(); });
    const std::set<std::int32_t> measured = wavelengths(run);
    std::copy_if(measured.begin(), measured.end(), std::back_inserter(columns.wavelengths), [&](std::int32_t each) {
        return all([&](const Reading& reading) { return reflectance(reading, each).has_value(); });
    });
    columns.areAll = columns.lab == hasLab(run) && columns.wavelengths.size() == measured.size();
    if (!columns.lab && columns.wavelengths.empty()) {
        throw HostError("the patches have no measured value in common, and CGATS can't leave one out; choose CSV or "
                        "JSON");
    }
    return columns;
}

std::string quoted(std::string text) {
    if (text.empty()) text = "-"; // there are readers that take an empty text for the one before it
    for (char& character : text) {
        const auto code = static_cast<unsigned char>(character);
        if (character == '"') character = '\'';
        if (code < 0x20 || code == 0x7F) character = ' ';
    }
    return '"' + text + '"';
}

std::string line(std::string_view keyword, const std::string& text) {
    return fmt::format("{}\t{}\n", keyword, quoted(text));
}

/// A keyword that is not the standard's must be declared.
std::string ownLine(const std::string& keyword, std::string_view text) {
    return line("KEYWORD", keyword) + line(keyword, std::string(text));
}

std::string descriptor(const Run& run, const Columns& columns) {
    const std::string arrangement = run.patchesInRow > 0 ? fmt::format(" in rows of {}", run.patchesInRow) : "";
    const char* const remark = columns.areAll ? "" : "; values that not all of them have are left out";
    return fmt::format("patches: {}{}{}", run.readings.size(), arrangement, remark);
}

std::string instrumentation(const Run& run) {
    const std::string source = run.simulation.empty() ? "" : fmt::format("simulated: {}; ", run.simulation);
    return fmt::format("{}module {}, version {}", source, run.module, run.version);
}

std::string header(const Run& run, const Columns& columns) {
    std::string text = "CGATS.17\n";
    text += line("ORIGINATOR", "spm");
    text += line("FILE_DESCRIPTOR", "Measured colours");
    text += line("DESCRIPTOR", descriptor(run, columns));
    text += line("CREATED", run.started);
    text += line("INSTRUMENTATION", instrumentation(run));
    if (columns.lab) {
        text += line("WEIGHTING_FUNCTION", fmt::format("ILLUMINANT, {}", illuminant));
        text += line("WEIGHTING_FUNCTION", fmt::format("OBSERVER, {}", observer));
        text += ownLine("ILLUMINATION_NAME", illuminant);
        text += ownLine("OBSERVER_ANGLE", observer.substr(0, observer.find(' ')));
    }
    if (!columns.wavelengths.empty()) text += ownLine("SPECTRAL_NORM", "1.0");
    return text;
}

std::string format(const Columns& columns) {
    std::string text = "SAMPLE_ID\tSAMPLE_NAME";
    if (columns.lab) text += "\tLAB_L\tLAB_A\tLAB_B";
    for (const std::int32_t wavelength : columns.wavelengths) {
        text += fmt::format("\tSPECTRAL_NM{}", wavelength);
    }
    return text + '\n';
}

std::string dataLine(std::size_t id, const Reading& reading, const Columns& columns) {
    std::string text = fmt::format("{}\t{}", id, quoted(reading.name));
    if (columns.lab) text += fmt::format("\t{:.4f}\t{:.4f}\t{:.4f}", reading.lab->L, reading.lab->a, reading.lab->b);
    for (const std::int32_t wavelength : columns.wavelengths) {
        text += fmt::format("\t{:.6f}", static_cast<double>(reflectance(reading, wavelength).value()) / 100);
    }
    return text + '\n';
}

} // namespace

std::string formatCgats(const Run& run) {
    requireValues(run);
    const Columns columns = commonColumns(run);
    std::string text = header(run, columns);
    text += fmt::format("NUMBER_OF_FIELDS\t{}\n", 2 + (columns.lab ? 3 : 0) + columns.wavelengths.size());
    text += fmt::format("BEGIN_DATA_FORMAT\n{}END_DATA_FORMAT\n", format(columns));
    text += fmt::format("NUMBER_OF_SETS\t{}\nBEGIN_DATA\n", run.readings.size());
    std::size_t id = 0;
    for (const Reading& reading : run.readings) {
        text += dataLine(++id, reading, columns);
    }
    return text + "END_DATA\n";
}

} // namespace host

#include "spm/formats/Formats.h"
#include "spm/formats/Reference.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <functional>
#include <iterator>
#include <set>

namespace spm {

namespace {

/// The columns of a table. CGATS has no missing values, so readings with different columns are in different tables.
struct Columns {
    bool lab = false;
    bool xyz = false;
    std::vector<std::int32_t> wavelengths{};
    /// The title of the column of differences; empty if there is none.
    std::string difference{};

    bool operator==(const Columns&) const = default;
    std::size_t size() const {
        return (lab ? 3 : 0) + (xyz ? 3 : 0) + wavelengths.size() + (difference.empty() ? 0 : 1);
    }
};

/// The title of a column of differences in CGATS.17.
const char* titleOf(Formula formula) {
    return formula == Formula::ciede2000 ? "LAB_DE_2000" : formula == Formula::cie94 ? "LAB_DE_94" : "LAB_DE";
}

Columns columnsOf(const Run& run, const Reading& reading) {
    Columns columns{reading.lab.has_value(),
                    xyzOf(run, reading).has_value(),
                    {},
                    differenceOf(run, reading) ? titleOf(run.reference->formula) : ""};
    std::ranges::transform(reading.spectrum, std::back_inserter(columns.wavelengths), &SPM_REFLECTION::wavelength);
    std::ranges::sort(columns.wavelengths);
    return columns;
}

/// The tables' columns, with the widest table first: some programs read only the first table.
std::vector<Columns> tablesOf(const Run& run) {
    std::vector<Columns> tables;
    for (const Reading& reading : run.readings) {
        if (!reading.isMeasured()) continue;
        Columns columns = columnsOf(run, reading);
        if (std::find(tables.begin(), tables.end(), columns) == tables.end()) tables.push_back(std::move(columns));
    }
    std::ranges::stable_sort(tables, std::ranges::greater{}, &Columns::size);
    return tables;
}

/// Replaces characters that quoted strings and comments can't contain: CGATS has no escapes.
std::string sanitize(std::string text) {
    for (char& character : text) {
        const auto code = static_cast<unsigned char>(character);
        if (character == '"') character = '\'';
        if (code < 0x20 || code == 0x7F) character = ' ';
    }
    return text;
}

std::string quoted(const std::string& text) {
    return '"' + (text.empty() ? "-" : sanitize(text)) + '"'; // some readers repeat the previous value for ""
}

std::string line(std::string_view keyword, const std::string& text) {
    return fmt::format("{}\t{}\n", keyword, quoted(text));
}

/// Declares a keyword that is not in the standard, and sets it.
std::string customLine(const std::string& keyword, std::string_view text) {
    return line("KEYWORD", keyword) + line(keyword, std::string(text));
}

std::string descriptor(const Run& run, std::size_t patches) {
    std::string text = coverage(run) + " measured";
    if (run.patchesInRow > 0) text += fmt::format(", in rows of {}", run.patchesInRow);
    if (patches < measuredCount(run)) text += fmt::format("; this table has {} of them", patches);
    return text;
}

/// The missing patches as comments, which readers skip.
std::string gapComments(const Run& run) {
    std::string text;
    for (const Gap& gap : gaps(run)) {
        text += fmt::format("# {}\n", sanitize(describe(gap)));
    }
    return text;
}

std::string instrumentation(const Run& run) {
    return fmt::format("{}; module version {}",
                       run.simulation.empty() ? run.instrument : "simulated: " + run.simulation, run.version);
}

std::string labLines(const Conditions& conditions) {
    return line("WEIGHTING_FUNCTION", fmt::format("ILLUMINANT, {}", conditions.illuminant)) +
           line("WEIGHTING_FUNCTION", fmt::format("OBSERVER, {}", observerOf(conditions))) +
           line("COMPUTATIONAL_PARAMETER", fmt::format("COLORIMETRY, {}", colorimetryOf(conditions))) +
           customLine("ILLUMINATION_NAME", conditions.illuminant) +
           customLine("OBSERVER_ANGLE", std::to_string(conditions.observer));
}

/// Gives the wavelength range only if the steps are equal, as readers assume.
std::string spectralLines(const std::vector<std::int32_t>& wavelengths) {
    std::set<std::int32_t> steps;
    for (std::size_t i = 1; i < wavelengths.size(); ++i) {
        steps.insert(wavelengths[i] - wavelengths[i - 1]);
    }
    std::string text = customLine("SPECTRAL_NORM", "1.0");
    if (steps.size() != 1) return text;
    return text + customLine("SPECTRAL_BANDS", std::to_string(wavelengths.size())) +
           customLine("SPECTRAL_START_NM", std::to_string(wavelengths.front())) +
           customLine("SPECTRAL_END_NM", std::to_string(wavelengths.back()));
}

std::string header(const Run& run, const Columns& columns, std::size_t patches) {
    std::string text = "CGATS.17\n";
    text += line("ORIGINATOR", "spm");
    text += line("FILE_DESCRIPTOR", "Measured colours");
    text += line("DESCRIPTOR", descriptor(run, patches));
    text += line("CREATED", run.started);
    text += line("INSTRUMENTATION", instrumentation(run));
    if (!run.conditions.measurement.empty()) text += line("MEASUREMENT_SOURCE", run.conditions.measurement);
    if (columns.lab) text += labLines(run.conditions);
    if (!columns.wavelengths.empty()) text += spectralLines(columns.wavelengths);
    if (!columns.difference.empty())
        text += fmt::format("# {}: difference from {}\n", columns.difference, sanitize(run.reference->file.string()));
    return text + gapComments(run);
}

std::string dataFormat(const Columns& columns) {
    std::string text = "SAMPLE_ID\tSAMPLE_NAME";
    if (columns.lab) text += "\tLAB_L\tLAB_A\tLAB_B";
    if (columns.xyz) text += "\tXYZ_X\tXYZ_Y\tXYZ_Z";
    for (const std::int32_t wavelength : columns.wavelengths) {
        text += fmt::format("\tSPECTRAL_NM{}", wavelength);
    }
    if (!columns.difference.empty()) text += '\t' + columns.difference;
    return text + '\n';
}

std::string dataLine(const Run& run, std::size_t place, const Columns& columns) {
    const Reading& reading = run.readings[place];
    std::string text = fmt::format("{}\t{}", place + 1, quoted(reading.name));
    if (reading.lab) text += fmt::format("\t{:.4f}\t{:.4f}\t{:.4f}", reading.lab->L, reading.lab->a, reading.lab->b);
    if (const auto xyz = xyzOf(run, reading)) text += fmt::format("\t{:.4f}", fmt::join(*xyz, "\t"));
    for (const std::int32_t wavelength : columns.wavelengths) {
        text += fmt::format("\t{:.6f}", static_cast<double>(reflectance(reading, wavelength).value()) / 100);
    }
    if (const auto difference = differenceOf(run, reading)) text += fmt::format("\t{:.4f}", difference->deltaE);
    return text + '\n';
}

std::string table(const Run& run, const Columns& columns) {
    std::string lines;
    std::size_t patches = 0;
    for (std::size_t i = 0; i < run.readings.size(); ++i) {
        if (columnsOf(run, run.readings[i]) != columns) continue;
        lines += dataLine(run, i, columns);
        ++patches;
    }
    return header(run, columns, patches) + fmt::format("NUMBER_OF_FIELDS\t{}\n", 2 + columns.size()) +
           fmt::format("BEGIN_DATA_FORMAT\n{}END_DATA_FORMAT\n", dataFormat(columns)) +
           fmt::format("NUMBER_OF_SETS\t{}\nBEGIN_DATA\n{}END_DATA\n", patches, lines);
}

} // namespace

std::string formatCgats(const Run& run) {
    requireValues(run);
    std::string text;
    for (const Columns& columns : tablesOf(run)) {
        text += table(run, columns);
    }
    return text;
}

} // namespace spm

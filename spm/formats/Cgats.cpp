// CGATS has no missing values, and many programs read only the first table. So there is one table with the measured
// patches, and the others are in comments, which spm reads when a run goes on.

#include "spm/Error.h"
#include "spm/formats/Formats.h"
#include "spm/formats/Sheet.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <iomanip>
#include <iterator>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>

namespace spm {

namespace {

using Words = std::vector<std::string>;

constexpr std::string_view notMeasured = "# NOT_MEASURED";
constexpr std::string_view simulatedBy = "simulated: ";
constexpr std::string_view versionFollows = "; module version ";

bool isControl(char character) {
    const auto code = static_cast<unsigned char>(character);
    return code < 0x20 || code == 0x7F;
}

/// Replaces the characters that quoted strings can't contain.
std::string quotedString(std::string text) {
    std::ranges::replace(text, '"', '\'');
    std::ranges::replace_if(text, isControl, ' ');
    return '"' + text + '"';
}

/// A field of the chart: quoted only if it must be.
std::string word(const std::string& field) {
    constexpr const char* plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.+-_";
    return field.empty() || field.find_first_not_of(plain) != std::string::npos ? quotedString(field) : field;
}

std::string keywordLine(std::string_view keyword, const std::string& text) {
    return fmt::format("{}\t{}\n", keyword, quotedString(text));
}

/// Declares a keyword that is not in the standard, and sets it.
std::string customLine(const std::string& keyword, const std::string& text) {
    return keywordLine("KEYWORD", keyword) + keywordLine(keyword, text);
}

/// Gives the wavelength range only if the steps are equal, as readers assume.
std::string spectralLines(const std::vector<std::int32_t>& wavelengths) {
    if (wavelengths.empty()) return "";
    const auto bands = static_cast<std::int32_t>(wavelengths.size());
    const std::int32_t step = bands > 1 ? wavelengths[1] - wavelengths[0] : 0;
    std::string text = customLine("SPECTRAL_NORM", "1.0");
    for (std::int32_t i = 0; i < bands; ++i) {
        if (step == 0 || wavelengths[static_cast<std::size_t>(i)] != wavelengths.front() + i * step) return text;
    }
    return text + customLine("SPECTRAL_BANDS", std::to_string(bands)) +
           customLine("SPECTRAL_START_NM", std::to_string(wavelengths.front())) +
           customLine("SPECTRAL_END_NM", std::to_string(wavelengths.back()));
}

/// The fields that come from the chart.
std::string chartWords(const Run& run, std::size_t place) {
    const Patch& patch = run.patches[place - 1];
    Words words;
    std::ranges::transform(patch.fields, std::back_inserter(words), word);
    words = withName(run, words, quotedString(patch.name));
    if (!hasIds(run)) words.insert(words.begin(), std::to_string(place));
    return fmt::format("{}", fmt::join(words, "\t"));
}

/// The patches that were not measured, as comments with the place in the chart, the chart's fields and the reason.
std::string missingLines(const Run& run) {
    std::string text;
    for (std::size_t place = 1; place <= run.patches.size(); ++place) {
        const Patch& patch = run.patches[place - 1];
        if (patch.reading) continue;
        text += fmt::format("{}\t{}\t{}\t{}\n", notMeasured, place, chartWords(run, place),
                            quotedString(missingReasonOf(patch)));
    }
    return text;
}

std::string cgatsHeader(const Run& run) {
    const Conditions& conditions = run.conditions;
    const std::string instrument = run.simulation.empty() ? run.instrument : std::string(simulatedBy) + run.simulation;
    std::string text = "CGATS.17\n";
    text += keywordLine("ORIGINATOR", "spm");
    text += keywordLine("FILE_DESCRIPTOR", "Measured colours");
    text += keywordLine("DESCRIPTOR", coverage(run) + " measured");
    text += keywordLine("CREATED", run.started);
    text += keywordLine("INSTRUMENTATION", instrument + std::string(versionFollows) + run.version);
    if (!conditions.measurement.empty()) text += keywordLine("MEASUREMENT_SOURCE", conditions.measurement);
    text += keywordLine("WEIGHTING_FUNCTION", fmt::format("ILLUMINANT, {}", conditions.illuminant));
    text += keywordLine("WEIGHTING_FUNCTION", fmt::format("OBSERVER, {}", observerOf(conditions)));
    text += keywordLine("COMPUTATIONAL_PARAMETER", fmt::format("COLORIMETRY, {}", colorimetryOf(conditions)));
    text += customLine("ILLUMINATION_NAME", conditions.illuminant);
    text += customLine("OBSERVER_ANGLE", std::to_string(conditions.observer));
    if (!run.chart.empty()) text += customLine("CHART", run.chart);
    text += customLine("PATCHES_IN_ROW", std::to_string(run.patchesInRow));
    return text + spectralLines(wavelengths(run)) + missingLines(run);
}

Words cgatsTitles(const Run& run) {
    Words titles = withName(run, run.chartColumns, "SAMPLE_NAME");
    if (!hasIds(run)) titles.insert(titles.begin(), "SAMPLE_ID");
    titles.insert(titles.end(), {"LAB_L", "LAB_A", "LAB_B"});
    if (run.withXyz) titles.insert(titles.end(), {"XYZ_X", "XYZ_Y", "XYZ_Z"});
    for (const std::int32_t wavelength : wavelengths(run)) {
        titles.push_back(fmt::format("SPECTRAL_NM{}", wavelength));
    }
    return titles;
}

std::string dataLine(const Run& run, std::size_t place) {
    const Reading& reading = *run.patches[place - 1].reading;
    std::string text = chartWords(run, place);
    text += fmt::format("\t{:.4f}\t{:.4f}\t{:.4f}", reading.lab.L, reading.lab.a, reading.lab.b);
    if (run.withXyz) text += fmt::format("\t{:.4f}", fmt::join(xyzOf(run, reading), "\t"));
    for (const SPM_REFLECTION& point : reading.spectrum) {
        text += fmt::format("\t{:.6f}", static_cast<double>(point.value) / 100);
    }
    return text + '\n';
}

/// Splits a line into words. Quoted words can contain blanks; # starts a comment.
Words split(const std::string& line) {
    std::istringstream stream(line);
    Words words;
    std::string next;
    while ((stream >> std::ws).peek() != '#' && stream >> std::quoted(next, '"', '\0')) {
        words.push_back(next);
    }
    return words;
}

/// The part of a text after a prefix; none if it starts with something else.
std::optional<std::string> after(std::string_view prefix, const std::string& text) {
    return text.starts_with(prefix) ? std::optional(text.substr(prefix.size())) : std::nullopt;
}

class CgatsReader {
public:
    explicit CgatsReader(const std::string& description) : sheet{.description = description} {
        run.conditions = {"", 0};
        run.patchesInRow = unknownRows;
    }

    Run read(const std::string& text) {
        std::istringstream lines(text);
        std::string line;
        for (int number = 1; !isDone && std::getline(lines, line); ++number) {
            if (const auto missed = after(notMeasured, line)) missing.push_back(split(*missed));
            Sheet::Row row{fmt::format("line {}", number), split(line)};
            if (!row.fields.empty()) take(std::move(row));
        }
        if (!end.empty()) throw Error(fmt::format("{} is incomplete: {} is missing", sheet.description, end));
        insertMissing();
        const Run table = sheet.titles.place.empty() ? Run{} : readSheet(sheet);
        run.patches = table.patches;
        run.chartColumns = table.chartColumns;
        run.withXyz = table.withXyz;
        return run;
    }

private:
    void take(Sheet::Row row) {
        const std::string keyword = row.fields.front();
        if (keyword == end) {
            isDone = keyword == "END_DATA" && !sheet.rows.empty();
            if (keyword == "END_DATA" && !isDone) sheet.titles = {};
            end.clear();
        } else if (end == "END_DATA_FORMAT") {
            std::ranges::move(row.fields, std::back_inserter(sheet.titles.fields));
        } else if (end == "END_DATA") {
            sheet.rows.push_back(std::move(row));
        } else if (keyword == "BEGIN_DATA" || keyword == "BEGIN_DATA_FORMAT") {
            if (sheet.titles.fields.empty()) sheet.titles.place = row.place;
            end = "END" + keyword.substr(keyword.find('_'));
        } else if (row.fields.size() > 1) {
            takeHeader(keyword, row.fields[1]);
        }
    }

    void takeHeader(const std::string& keyword, const std::string& value) {
        if (keyword == "SPECTRAL_NORM") sheet.spectralNorm = value;
        if (keyword == "MEASUREMENT_SOURCE") run.conditions.measurement = value;
        if (keyword == "CHART") run.chart = value;
        if (keyword == "PATCHES_IN_ROW") run.patchesInRow = parseNumber(value, unknownRows);
        if (const auto name = after("ILLUMINANT, ", value)) run.conditions.illuminant = *name;
        if (const auto degrees = after("OBSERVER, ", value)) run.conditions.observer = parseNumber(*degrees, 0);
        if (const auto origin = after("COLORIMETRY, ", value)) run.conditions.isCalculated = isCalculated(*origin);
        const auto simulation = after(simulatedBy, value);
        if (keyword == "INSTRUMENTATION" && simulation) {
            run.simulation = simulation->substr(0, simulation->rfind(versionFollows));
        }
    }

    /// Inserts the patches from the comments, each with its place, fields and reason, as rows without values.
    void insertMissing() {
        if (missing.empty()) return;
        for (Sheet::Row& row : sheet.rows) {
            row.fields.emplace_back();
        }
        sheet.titles.fields.emplace_back("not_measured");
        for (Words& words : missing) {
            if (words.size() < 3)
                throw Error(fmt::format("{} has an incomplete comment {}", sheet.description, notMeasured));
            const auto place = static_cast<std::size_t>(parseNumber(words.front(), 1));
            Sheet::Row row{fmt::format("{} {}", notMeasured, place), {words.begin() + 1, words.end() - 1}};
            row.fields.resize(sheet.titles.fields.size());
            row.fields.back() = words.back();
            const std::size_t index = std::min(place - 1, sheet.rows.size());
            sheet.rows.insert(sheet.rows.begin() + static_cast<std::ptrdiff_t>(index), std::move(row));
        }
    }

    Sheet sheet;
    Run run;
    std::vector<Words> missing;
    /// The keyword that ends the current section; empty between sections.
    std::string end;
    bool isDone = false;
};

} // namespace

std::string formatCgats(const Run& run) {
    const Words titles = cgatsTitles(run);
    std::string lines;
    for (std::size_t place = 1; place <= run.patches.size(); ++place) {
        if (run.patches[place - 1].reading) lines += dataLine(run, place);
    }
    return cgatsHeader(run) + fmt::format("NUMBER_OF_FIELDS\t{}\n", titles.size()) +
           fmt::format("BEGIN_DATA_FORMAT\n{}\nEND_DATA_FORMAT\n", fmt::join(titles, "\t")) +
           fmt::format("NUMBER_OF_SETS\t{}\nBEGIN_DATA\n{}END_DATA\n", measuredCount(run.patches), lines);
}

bool fitsCgats(const std::string& text) {
    return !text.empty() && text.find('"') == std::string::npos && std::ranges::none_of(text, isControl);
}

Run readCgats(const std::string& text, const std::string& description) {
    return CgatsReader(description).read(text);
}

bool isCgats(const std::string& text) {
    return text.starts_with("CGATS") || text.find("\nBEGIN_DATA_FORMAT") != std::string::npos;
}

} // namespace spm

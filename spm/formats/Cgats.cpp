// CGATS has no missing values, and many programs read only the first table. So there is one table with the measured
// patches, and the others are in comments between its lines, which spm reads when a run goes on.

#include "spm/Error.h"
#include "spm/formats/Columns.h"
#include "spm/formats/Formats.h"
#include "spm/formats/Sheet.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <iomanip>
#include <iterator>
#include <map>
#include <sstream>
#include <string_view>
#include <utility>

namespace spm {

namespace {

using Words = std::vector<std::string>;

constexpr std::string_view missingMark = "# NOT_MEASURED";

/// The keywords whose values begin with the name of a fact.
const char* keywordOf(const std::string& fact) {
    if (fact == "illuminant" || fact == "observer") return "WEIGHTING_FUNCTION";
    return fact == "colorimetry" ? "COMPUTATIONAL_PARAMETER" : nullptr;
}

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

/// Sets a keyword. One that is not in the standard is declared first.
std::string keywordLine(const std::string& keyword, const std::string& text) {
    constexpr std::array custom{"CHART",          "PATCHES_IN_ROW",    "SIMULATED",      "SPECTRAL_NORM",
                                "SPECTRAL_BANDS", "SPECTRAL_START_NM", "SPECTRAL_END_NM"};
    const bool isCustom = std::ranges::find(custom, keyword) != custom.end();
    return (isCustom ? keywordLine("KEYWORD", keyword) : "") + fmt::format("{}\t{}\n", keyword, quotedString(text));
}

std::string factLine(const std::string& fact, const std::string& text) {
    std::string name = fact;
    std::ranges::transform(name, name.begin(), [](char c) { return c == '_' ? c : static_cast<char>(c - 32); });
    const char* const keyword = keywordOf(fact);
    return keyword == nullptr ? keywordLine(name, text) : keywordLine(keyword, fmt::format("{}, {}", name, text));
}

std::string cgatsHeader(const Run& run, const Columns& spectrum) {
    std::string text = "CGATS.17\n";
    text += keywordLine("ORIGINATOR", "spm, module version " + run.version);
    text += keywordLine("FILE_DESCRIPTOR", run.simulation.empty() ? "Measured colours" : "Simulated colours");
    text += keywordLine("DESCRIPTOR", coverage(run) + " measured");
    text += keywordLine("CREATED", run.started);
    for (const auto& [fact, value] : factsOf(run)) {
        if (!value.empty()) text += factLine(fact, value);
    }
    if (spectrum.empty()) return text;
    const auto wavelengthOf = [](const Column& column) { return column.cgatsTitle.substr(spectralPrefix.size()); };
    return text + keywordLine("SPECTRAL_NORM", "100") + keywordLine("SPECTRAL_BANDS", std::to_string(spectrum.size())) +
           keywordLine("SPECTRAL_START_NM", wavelengthOf(spectrum.front())) +
           keywordLine("SPECTRAL_END_NM", wavelengthOf(spectrum.back()));
}

/// The titles of the data.
Words cgatsTitles(const Run& run, const Columns& columns) {
    Words titles = withName(run, run.chartColumns, "SAMPLE_NAME");
    if (!hasIds(run)) titles.insert(titles.begin(), idTitle);
    std::ranges::transform(columns, std::back_inserter(titles), &Column::cgatsTitle);
    return titles;
}

/// A patch that was not measured is in a comment, with the reason in a comment of its own.
std::string dataLine(const Run& run, std::size_t place, const Columns& columns) {
    const Patch& patch = run.patches[place - 1];
    Words words = patch.fields;
    std::ranges::transform(words, words.begin(), word);
    words = withName(run, words, quotedString(patch.name));
    if (!hasIds(run)) words.insert(words.begin(), std::to_string(place));
    if (!patch.reading) {
        return fmt::format("{}\t{}\t# {}\n", missingMark, fmt::join(words, "\t"), quotedString(patch.missingReason));
    }
    return fmt::format("{}\t{}\n", fmt::join(words, "\t"), fmt::join(fieldsOf(patch, columns), "\t"));
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

class CgatsReader {
public:
    explicit CgatsReader(const std::string& description) : sheet{.description = description} {}

    Run read(const std::string& text) {
        std::istringstream lines(text);
        std::string line;
        for (int number = 1; !isDone && std::getline(lines, line); ++number) {
            const bool isMissing = end == "END_DATA" && line.starts_with(missingMark);
            Sheet::Row row{fmt::format("line {}", number), split(isMissing ? line.substr(missingMark.size()) : line)};
            if (isMissing) row.fields.resize(sheet.titles.fields.size());
            if (!row.fields.empty()) take(std::move(row));
        }
        if (!end.empty()) throw Error(fmt::format("{} is incomplete: {} is missing", sheet.description, end));
        Run run = sheet.titles.place.empty() ? Run{} : readSheet(sheet);
        takeFacts(run, [&](const char* fact) { return facts[fact]; });
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
            takeHeader(lowerCase(keyword), row.fields[1]);
        }
    }

    void takeHeader(const std::string& keyword, const std::string& value) {
        const std::size_t comma = value.find(", ");
        const bool isNamed = comma != std::string::npos && keywordOf(lowerCase(value.substr(0, comma))) != nullptr;
        facts.emplace(isNamed ? lowerCase(value.substr(0, comma)) : keyword, isNamed ? value.substr(comma + 2) : value);
    }

    Sheet sheet;
    std::map<std::string, std::string> facts;
    /// The keyword that ends the current section; empty between sections.
    std::string end;
    bool isDone = false;
};

} // namespace

std::string formatCgats(const Run& run) {
    const Columns spectrum = spectralColumns(run);
    const Columns columns = joined({measuredColumns(run), spectrum});
    const Words titles = cgatsTitles(run, columns);
    std::string lines;
    for (std::size_t place = 1; place <= run.patches.size(); ++place) {
        lines += dataLine(run, place, columns);
    }
    return cgatsHeader(run, spectrum) + fmt::format("NUMBER_OF_FIELDS\t{}\n", titles.size()) +
           fmt::format("BEGIN_DATA_FORMAT\n{}\nEND_DATA_FORMAT\n", fmt::join(titles, "\t")) +
           fmt::format("NUMBER_OF_SETS\t{}\nBEGIN_DATA\n{}END_DATA\n", measuredCount(run.patches), lines);
}

bool fitsCgats(const std::string& text) {
    return !text.empty() && text.find('"') == std::string::npos && std::ranges::none_of(text, isControl);
}

Run readCgats(const std::string& text, const std::string& description) {
    return CgatsReader(description).read(text);
}

} // namespace spm

// CSV and CGATS are first read into tables of strings, so that both share the rules for columns, names and numbers.

#include "spm/formats/PatchFile.h"

#include "common/CsvReader.h"
#include "common/Files.h"
#include "common/Text.h"
#include "spm/Error.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <iomanip>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <sstream>
#include <system_error>

namespace spm {

namespace {

using Json = nlohmann::ordered_json;

struct Row {
    /// For error messages: "line 3".
    std::string place;
    std::vector<std::string> fields;
};

struct Table {
    Row header;
    std::vector<Row> rows;
    /// The value of the perfect diffuser in columns of Kind::fraction.
    std::string spectralNorm = "1";
};

/// What a column contains; the first two in the order in which the name of a patch is looked up.
enum class Kind { name, id, L, a, b, percent, fraction, other };

struct Column {
    Kind kind;
    std::int32_t wavelength = 0;
    bool operator<(const Column& other) const {
        return std::pair(kind, wavelength) < std::pair(other.kind, other.wavelength);
    }
};

/// The indices of a table's columns.
using Columns = std::map<Column, std::size_t>;

struct Patch {
    Reading reading;
    /// Identifies the patch in all tables of a file.
    std::string id;
    std::string place;
};

Column columnOf(const std::string& title) {
    constexpr auto syntax = std::regex::ECMAScript | std::regex::icase;
    static const std::vector<std::pair<Kind, std::regex>> kinds{
        {Kind::name, std::regex("name|patch|sample|sample_name", syntax)},
        {Kind::id, std::regex("sample_id", syntax)},
        {Kind::L, std::regex(R"(l\*?|lab_l)", syntax)},
        {Kind::a, std::regex(R"(a\*?|lab_a)", syntax)},
        {Kind::b, std::regex(R"(b\*?|lab_b)", syntax)},
        {Kind::percent, std::regex("nm([0-9]{3,4})_percent", syntax)},
        {Kind::fraction, std::regex("(?:spectral_(?:nm_?)?|nm_?)([0-9]{3,4})", syntax)}};
    for (const auto& [kind, pattern] : kinds) {
        std::smatch parts;
        if (std::regex_match(title, parts, pattern)) return {kind, parts.size() > 1 ? std::stoi(parts[1]) : 0};
    }
    return {Kind::other};
}

bool hasLab(const Columns& columns) {
    return columns.contains({Kind::L}) && columns.contains({Kind::a}) && columns.contains({Kind::b});
}

Reading readingOf(const Json& json) {
    Reading reading{json.at("name"), {}, {}};
    if (json.contains("lab")) {
        const Json& lab = json["lab"];
        reading.lab = SPM_LAB{lab.at("L"), lab.at("a"), lab.at("b")};
    }
    const Json spectrum = json.value("reflectancePercent", Json::object());
    for (const auto& [wavelength, percent] : spectrum.items()) {
        reading.spectrum.push_back({std::stoi(wavelength), percent});
    }
    return reading;
}

/// Splits a line of CGATS into words. Quoted words can contain blanks; # starts a comment.
std::vector<std::string> splitCgatsLine(const std::string& line) {
    std::istringstream stream(line);
    std::vector<std::string> words;
    std::string word;
    while ((stream >> std::ws).peek() != '#' && stream >> std::quoted(word, '"', '\0')) {
        words.push_back(word);
    }
    return words;
}

/// Merges the values of patches with the same ID from several tables, and sorts the patches by ID.
void mergeTables(std::vector<Patch>& patches) {
    std::ranges::stable_sort(patches, {}, [](const Patch& patch) { return std::pair(patch.id.size(), patch.id); });
    std::vector<Patch> merged;
    for (Patch& patch : patches) {
        if (merged.empty() || merged.back().id != patch.id) {
            merged.push_back(std::move(patch));
        } else {
            Reading& reading = merged.back().reading;
            if (patch.reading.lab) reading.lab = patch.reading.lab;
            if (!patch.reading.spectrum.empty()) reading.spectrum = std::move(patch.reading.spectrum);
        }
    }
    patches = std::move(merged);
}

class PatchReader {
public:
    PatchReader(std::string fileDescription, PatchFileKind kind)
        : description(std::move(fileDescription)), isReference(kind == PatchFileKind::reference) {}

    std::vector<Patch> read(const std::string& text) const {
        std::vector<Patch> patches = readAnyFormat(text);
        if (patches.empty()) {
            throw Error(fmt::format("{} has no patches; add a line for each below the header", description));
        }
        if (isReference) requireExpectedValues(patches);
        return patches;
    }

private:
    [[noreturn]] void fail(const std::string& place, std::string_view reason) const {
        throw Error(fmt::format("{}, {}: {}", description, place, reason));
    }

    [[noreturn]] void failWithoutHeader(const std::string& place) const {
        fail(place, fmt::format("the header {} is missing; put it above the patches",
                                isReference ? "name,L*,a*,b*" : "with a column of names, \"name\" or SAMPLE_NAME,"));
    }

    std::vector<Patch> readAnyFormat(const std::string& text) const {
        const std::size_t first = text.find_first_not_of("\xEF\xBB\xBF \t\r\n");
        if (first != std::string::npos && text[first] == '{') return readJson(text);
        const bool isCgats = text.starts_with("CGATS") || text.find("\nBEGIN_DATA_FORMAT") != std::string::npos;
        return isCgats ? readCgats(text) : readCsv(text);
    }

    std::vector<Patch> readJson(const std::string& text) const try {
        std::vector<Patch> patches;
        const Json run = Json::parse(text);
        for (const Json& reading : run.at("readings")) {
            patches.push_back({readingOf(reading), {}, fmt::format("reading {}", patches.size() + 1)});
        }
        return patches;
    } catch (const std::exception& error) {
        throw Error(fmt::format("{} is not JSON written by spm: {}", description, error.what()));
    }

    std::vector<Patch> readCsv(const std::string& text) const {
        const std::size_t separator = text.find_first_of(",;\t\n");
        if (separator != std::string::npos && (text[separator] == ';' || text[separator] == '\t')) {
            fail("line 1", fmt::format("the fields are separated by {}; use commas, and write numbers with a decimal "
                                       "point",
                                       text[separator] == ';' ? "semicolons" : "tabs"));
        }
        common::CsvReader csv(text, description);
        Table table;
        while (auto fields = csv.next()) {
            table.rows.push_back({fmt::format("line {}", csv.lineNumber()), std::move(*fields)});
        }
        if (table.rows.empty()) return {};
        table.header = table.rows.front();
        table.rows.erase(table.rows.begin());
        if (isReference && !hasLab(columnsOf(table.header))) failWithoutHeader(table.header.place);
        return patchesOf(table);
    }

    std::vector<Patch> readCgats(const std::string& text) const {
        std::istringstream lines(text);
        std::vector<Patch> patches;
        Table table;
        std::string end; // the keyword that ends the current section; empty between sections
        std::string line;
        for (int number = 1; std::getline(lines, line); ++number) {
            Row row{fmt::format("line {}", number), splitCgatsLine(line)};
            if (row.fields.empty()) continue;
            const std::string keyword = row.fields.front();
            if (keyword == end) {
                if (keyword == "END_DATA")
                    std::ranges::move(patchesOf(std::exchange(table, {})), std::back_inserter(patches));
                end.clear();
            } else if (end == "END_DATA_FORMAT") {
                std::ranges::move(row.fields, std::back_inserter(table.header.fields));
            } else if (end == "END_DATA") {
                table.rows.push_back(std::move(row));
            } else if (keyword == "BEGIN_DATA" || keyword == "BEGIN_DATA_FORMAT") {
                if (table.header.fields.empty()) table.header.place = row.place;
                end = "END" + keyword.substr(keyword.find('_'));
            } else if (keyword == "SPECTRAL_NORM" && row.fields.size() > 1) {
                table.spectralNorm = row.fields[1];
            }
        }
        if (!end.empty()) throw Error(fmt::format("{} is incomplete: {} is missing", description, end));
        if (text.rfind("\nBEGIN_DATA_FORMAT") != text.find("\nBEGIN_DATA_FORMAT")) mergeTables(patches);
        return patches;
    }

    Columns columnsOf(const Row& header) const {
        Columns columns;
        for (std::size_t i = 0; i < header.fields.size(); ++i) {
            const Column column = columnOf(header.fields[i]);
            if (columns.emplace(column, i).second || column.kind == Kind::name || column.kind == Kind::other) continue;
            fail(header.place, fmt::format("\"{}\" duplicates an earlier column; remove one", header.fields[i]));
        }
        if (columns.empty() || columns.begin()->first.kind > Kind::id) failWithoutHeader(header.place);
        const std::size_t name = columns.begin()->second; // the ID, if there is no column of names
        columns.emplace(Column{Kind::name}, name);
        columns.emplace(Column{Kind::id}, name);
        return columns;
    }

    std::vector<Patch> patchesOf(const Table& table) const {
        const Columns columns = columnsOf(table.header);
        const double scale = 100 / number(table.spectralNorm, table.header.place);
        std::vector<Patch> patches;
        for (const Row& row : table.rows) {
            if (row.fields.size() != table.header.fields.size()) {
                fail(row.place, fmt::format("the number of fields is {}, but the header has {}; put names that contain "
                                            "separators in double quotes",
                                            row.fields.size(), table.header.fields.size()));
            }
            if (std::ranges::all_of(row.fields, &std::string::empty)) {
                fail(row.place, "all fields are empty; remove the line");
            }
            patches.push_back(patchOf(row, columns, scale));
        }
        return patches;
    }

    /// @param scale  converts fractions to percent
    Patch patchOf(const Row& row, const Columns& columns, double scale) const {
        const auto text = [&](Kind kind) { return row.fields[columns.at({kind})]; };
        Patch patch{{text(Kind::name), {}, {}}, text(Kind::id), row.place};
        if (hasLab(columns) && !(text(Kind::L) + text(Kind::a) + text(Kind::b)).empty()) {
            const auto value = [&](Kind kind) { return number(text(kind), row.place); };
            patch.reading.lab = SPM_LAB{value(Kind::L), value(Kind::a), value(Kind::b)};
        }
        for (const auto& [column, index] : columns) {
            if (column.wavelength == 0 || row.fields[index].empty()) continue;
            const float percent = number(row.fields[index], row.place, column.kind == Kind::fraction ? scale : 1);
            patch.reading.spectrum.push_back({column.wavelength, percent});
        }
        return patch;
    }

    float number(const std::string& text, const std::string& place, double scale = 1) const {
        double value = 0;
        const char* const end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, value);
        value *= scale;
        const bool isFinite = std::abs(value) <= std::numeric_limits<float>::max();
        if (error == std::errc{} && stop == end && isFinite) return static_cast<float>(value);
        fail(place, fmt::format("\"{}\" is not a number; use the form -12.34", text));
    }

    void requireExpectedValues(const std::vector<Patch>& patches) const {
        std::set<std::string_view> names;
        for (const auto& [reading, id, place] : patches) {
            if (!reading.lab) {
                fail(place, fmt::format("\"{}\" has no L*, a* and b*; add them or remove the patch", reading.name));
            }
            for (const float value : {reading.lab->L, reading.lab->a, reading.lab->b}) {
                // Far beyond any surface colour; keeps the arithmetic from overflowing.
                if (std::abs(value) <= 500) continue;
                fail(place, fmt::format("{} is out of range; L*, a* and b* must be from -500 to 500", value));
            }
            if (names.insert(reading.name).second) continue;
            fail(place, fmt::format("duplicate patch name \"{}\"; make the names in a reference unique", reading.name));
        }
    }

    std::string description;
    bool isReference;
};

std::string readText(const std::filesystem::path& file, std::string_view what) try {
    return common::readFile(file);
} catch (const std::system_error& error) {
    throw Error(fmt::format("can't read {} {}: {}", what, file.string(), error.code().message()),
                "choose a CSV, CGATS or JSON file");
}

} // namespace

std::vector<Reading> readPatches(const std::filesystem::path& file, std::string_view what, PatchFileKind kind) {
    const std::string text = readText(file, what);
    const std::string description = fmt::format("{} {}", what, file.string());
    if (kind != PatchFileKind::run) common::requireUtf8(text, description);
    std::vector<Reading> readings;
    for (Patch& patch : PatchReader(description, kind).read(text)) {
        readings.push_back(std::move(patch.reading));
    }
    return readings;
}

bool isSimulated(const std::filesystem::path& runFile) {
    // How CSV, JSON and CGATS say that the values are not simulated.
    const std::regex notSimulated(R"(,no,[^\n]*\n|\n *"simulated": null,|\nINSTRUMENTATION\t"(?!simulated: ))");
    return !std::regex_search(readText(runFile, "the output file"), notSimulated);
}

bool hasConditions(const std::filesystem::path& runFile, const Conditions& conditions) {
    // The three values follow each other: with a comma between them in CSV, otherwise with a line break and the next
    // member or keyword.
    constexpr const char* separator = R"("?[,\r\n][^,:]*[,:]? ?"?)";
    const std::regex pattern(conditions.illuminant + separator + observerOf(conditions) + separator +
                             colorimetryOf(conditions));
    return std::regex_search(readText(runFile, "the output file"), pattern);
}

} // namespace spm

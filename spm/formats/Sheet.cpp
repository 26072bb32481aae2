#include "spm/formats/Sheet.h"

#include "spm/Error.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <map>
#include <utility>

namespace spm {

namespace {

constexpr const char* idTitle = "SAMPLE_ID";

/// What a column contains; the first two in the order in which the name of a patch is looked up.
enum class Kind { name, id, L, a, b, X, missingReason, device, percent, fraction, other };

constexpr std::array<std::pair<std::string_view, Kind>, 17> kinds{{{"name", Kind::name},
                                                                   {"patch", Kind::name},
                                                                   {"sample", Kind::name},
                                                                   {"sample_name", Kind::name},
                                                                   {"sample_id", Kind::id},
                                                                   {"l", Kind::L},
                                                                   {"l*", Kind::L},
                                                                   {"lab_l", Kind::L},
                                                                   {"a", Kind::a},
                                                                   {"a*", Kind::a},
                                                                   {"lab_a", Kind::a},
                                                                   {"b", Kind::b},
                                                                   {"b*", Kind::b},
                                                                   {"lab_b", Kind::b},
                                                                   {"x", Kind::X},
                                                                   {"xyz_x", Kind::X},
                                                                   {"not_measured", Kind::missingReason}}};

struct Column {
    Kind kind;
    std::int32_t wavelength = 0;
};

struct Band {
    std::size_t index;
    std::int32_t wavelength;
    bool isPercent;
};

/// The indices of a sheet's columns.
struct Columns {
    std::map<Kind, std::size_t> byKind;
    /// Those that are kept as they are, SAMPLE_ID first.
    std::vector<std::size_t> chart;
    std::vector<Band> bands;

    bool hasLab() const { return byKind.contains(Kind::L) && byKind.contains(Kind::a) && byKind.contains(Kind::b); }
};

bool isDevice(std::string_view title) {
    constexpr std::array<std::string_view, 4> prefixes{"cmyk_", "cmy_", "rgb_", "gray"};
    const bool isMultiInk = title.find("clr_") == 1; // such as 6CLR_1
    return isMultiInk || std::ranges::any_of(prefixes, [&](auto prefix) { return title.starts_with(prefix); });
}

std::string lowerCase(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return text;
}

/// Recognises columns of reflectance: "nm380_percent", "SPECTRAL_NM380", "SPECTRAL_380", "NM_380" and similar.
Column spectralColumnOf(std::string_view title) {
    const bool isPercent = title.ends_with("_percent");
    if (isPercent) title.remove_suffix(std::string_view("_percent").size());
    bool hasPrefix = false;
    for (const std::string_view prefix : {"spectral_", "nm", "_"}) {
        if (!title.starts_with(prefix)) continue;
        title.remove_prefix(prefix.size());
        hasPrefix = true;
    }
    std::int32_t wavelength = 0;
    const auto [stop, error] = std::from_chars(title.data(), title.data() + title.size(), wavelength);
    const bool isWavelength = error == std::errc{} && stop == title.data() + title.size() && wavelength >= 100;
    if (!hasPrefix || !isWavelength) return {Kind::other};
    return {isPercent ? Kind::percent : Kind::fraction, wavelength};
}

Column columnOf(const std::string& title) {
    const std::string lower = lowerCase(title);
    const auto* const known = std::ranges::find(kinds, lower, &std::pair<std::string_view, Kind>::first);
    if (known != kinds.end()) return {known->second};
    if (isDevice(lower)) return {Kind::device};
    return spectralColumnOf(lower);
}

class SheetReader {
public:
    explicit SheetReader(const Sheet& readSheet) : sheet(readSheet), columns(columnsOfSheet()) {
        percentPerFraction = 100 / number(sheet.spectralNorm, sheet.titles.place);
    }

    Run read() const {
        Run run;
        run.withXyz = columns.byKind.contains(Kind::X);
        for (const std::size_t index : columns.chart) {
            run.chartColumns.push_back(isId(index) ? idTitle : sheet.titles.fields[index]);
        }
        for (const Sheet::Row& row : sheet.rows) {
            requireFields(row);
            run.patches.push_back(patchOf(row));
        }
        return run;
    }

private:
    [[noreturn]] void fail(const std::string& place, std::string_view reason) const {
        throw Error(fmt::format("{}, {}: {}", sheet.description, place, reason));
    }

    bool isId(std::size_t index) const { return columnOf(sheet.titles.fields[index]).kind == Kind::id; }

    Columns columnsOfSheet() const {
        const std::vector<std::string>& titles = sheet.titles.fields;
        Columns found;
        for (std::size_t i = 0; i < titles.size(); ++i) {
            const auto [kind, wavelength] = columnOf(titles[i]);
            if (kind == Kind::other) continue;
            if (kind == Kind::device) {
                found.chart.push_back(i);
            } else if (wavelength != 0) {
                found.bands.push_back({i, wavelength, kind == Kind::percent});
            } else if (!found.byKind.emplace(kind, i).second && kind != Kind::name) {
                fail(sheet.titles.place, fmt::format("\"{}\" duplicates an earlier column; remove one", titles[i]));
            }
        }
        std::ranges::sort(found.bands, {}, &Band::wavelength);
        if (found.byKind.contains(Kind::id)) found.chart.insert(found.chart.begin(), found.byKind.at(Kind::id));
        if (found.byKind.empty() || found.byKind.begin()->first > Kind::id) {
            fail(sheet.titles.place, "the header with a column of names, \"name\" or SAMPLE_NAME, is missing; put it "
                                     "above the patches");
        }
        found.byKind.emplace(Kind::name, found.byKind.begin()->second); // the ID, if there is no column of names
        return found;
    }

    void requireFields(const Sheet::Row& row) const {
        if (row.fields.size() != sheet.titles.fields.size()) {
            fail(row.place, fmt::format("the number of fields is {}, but the header has {}; put names that contain "
                                        "separators in double quotes",
                                        row.fields.size(), sheet.titles.fields.size()));
        }
        if (std::ranges::all_of(row.fields, &std::string::empty))
            fail(row.place, "all fields are empty; remove the line");
    }

    std::string text(const Sheet::Row& row, Kind kind) const {
        const auto column = columns.byKind.find(kind);
        return column != columns.byKind.end() ? row.fields[column->second] : "";
    }

    Patch patchOf(const Sheet::Row& row) const {
        Patch patch{.name = text(row, Kind::name), .place = row.place, .missingReason = text(row, Kind::missingReason)};
        for (const std::size_t index : columns.chart) {
            const bool isNumber = !isId(index);
            patch.fields.push_back(isNumber ? withDecimalPoint(row.fields[index]) : row.fields[index]);
        }
        const bool hasLab = columns.hasLab() && !(text(row, Kind::L) + text(row, Kind::a) + text(row, Kind::b)).empty();
        if (hasLab) patch.reading = readingOf(row);
        return patch;
    }

    Reading readingOf(const Sheet::Row& row) const {
        const auto value = [&](Kind kind) { return static_cast<float>(number(text(row, kind), row.place)); };
        Reading reading{{value(Kind::L), value(Kind::a), value(Kind::b)}};
        for (const auto& [index, wavelength, isPercent] : columns.bands) {
            if (row.fields[index].empty()) continue;
            const double percent = number(row.fields[index], row.place) * (isPercent ? 1 : percentPerFraction);
            reading.spectrum.push_back({wavelength, static_cast<float>(percent)});
        }
        return reading;
    }

    std::string withDecimalPoint(std::string field) const {
        if (sheet.hasDecimalCommas) std::ranges::replace(field, ',', '.');
        return field;
    }

    double number(const std::string& field, const std::string& place) const {
        const std::string digits = withDecimalPoint(field);
        const char* const end = digits.data() + digits.size();
        double value = 0;
        const auto [stop, error] = std::from_chars(digits.data(), end, value);
        constexpr double largest = std::numeric_limits<float>::max() / 100;
        if (error == std::errc{} && stop == end && std::abs(value) <= largest) return value;
        fail(place, fmt::format("\"{}\" is not a number; use the form -12.34", field));
    }

    const Sheet& sheet;
    const Columns columns;
    double percentPerFraction = 0;
};

} // namespace

Run readSheet(const Sheet& sheet) {
    return SheetReader(sheet).read();
}

std::string firstField(const Sheet& sheet, std::string_view title) {
    const auto found = std::ranges::find(sheet.titles.fields, title);
    if (found == sheet.titles.fields.end() || sheet.rows.empty()) return "";
    return sheet.rows.front().fields[static_cast<std::size_t>(found - sheet.titles.fields.begin())];
}

std::int32_t parseNumber(std::string_view text, std::int32_t otherwise) {
    std::int32_t number = otherwise;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::vector<std::string> withName(const Run& run, std::vector<std::string> fields, const std::string& name) {
    fields.insert(fields.begin() + (hasIds(run) ? 1 : 0), name);
    return fields;
}

bool hasIds(const Run& run) {
    return !run.chartColumns.empty() && run.chartColumns.front() == idTitle;
}

} // namespace spm

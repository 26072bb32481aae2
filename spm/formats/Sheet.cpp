#include "spm/formats/Sheet.h"

#include "spm/Error.h"
#include "spm/formats/Columns.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <map>
#include <string_view>

namespace spm {

namespace {

bool isDevice(std::string_view title) {
    constexpr std::array<std::string_view, 4> prefixes{"cmyk_", "cmy_", "rgb_", "gray"};
    const bool isMultiInk = title.find("clr_") == 1; // such as 6CLR_1
    return isMultiInk || std::ranges::any_of(prefixes, [&](auto prefix) { return title.starts_with(prefix); });
}

/// The wavelength in the title of a column of spm's CSV or CGATS; 0 for other titles.
std::int32_t wavelengthOf(std::string_view title) {
    for (const std::string_view prefix : {"spectral_nm", "nm"}) {
        if (title.starts_with(prefix)) return parseNumber(title.substr(prefix.size()), 0);
    }
    return 0;
}

struct Band {
    std::size_t index;
    std::int32_t wavelength;
};

class SheetReader {
public:
    explicit SheetReader(const Sheet& readSheet) : sheet(readSheet) {
        for (std::size_t i = 0; i < sheet.titles.fields.size(); ++i) {
            takeTitle(i);
        }
        std::ranges::sort(bands, {}, &Band::wavelength);
        if (indices.contains("name")) return;
        if (!hasIds()) fail(sheet.titles, "the header with a column of names, such as \"name\", is missing");
        indices["name"] = indices["sample_id"];
    }

    Run read() const {
        Run run;
        run.withXyz = indices.contains("x");
        if (hasIds()) run.chartColumns.emplace_back(idTitle);
        for (const std::size_t index : deviceColumns) {
            run.chartColumns.push_back(sheet.titles.fields[index]);
        }
        for (const Sheet::Row& row : sheet.rows) {
            requireFields(row);
            run.patches.push_back(patchOf(row));
        }
        return run;
    }

private:
    [[noreturn]] void fail(const Sheet::Row& row, std::string_view reason) const {
        throw Error(fmt::format("{}, {}: {}", sheet.description, row.place, reason));
    }

    void takeTitle(std::size_t index) {
        // Other programs' titles of columns, in lower case, and spm's.
        static const std::map<std::string, std::string> synonyms{
            {"patch", "name"}, {"sample", "name"}, {"sample_name", "name"}, {"l", "l*"},   {"lab_l", "l*"}, {"a", "a*"},
            {"lab_a", "a*"},   {"b", "b*"},        {"lab_b", "b*"},         {"xyz_x", "x"}};
        const std::string lower = lowerCase(sheet.titles.fields[index]);
        if (isDevice(lower)) {
            deviceColumns.push_back(index);
        } else if (const std::int32_t wavelength = wavelengthOf(lower); wavelength != 0) {
            bands.push_back({index, wavelength});
        } else {
            const auto synonym = synonyms.find(lower);
            indices.emplace(synonym == synonyms.end() ? lower : synonym->second, index);
        }
    }

    bool hasIds() const { return indices.contains("sample_id"); }

    void requireFields(const Sheet::Row& row) const {
        if (row.fields.size() != sheet.titles.fields.size()) {
            fail(row,
                 fmt::format("the number of fields is {}, but the header has {}; put names that contain separators "
                             "in double quotes",
                             row.fields.size(), sheet.titles.fields.size()));
        }
        if (std::ranges::all_of(row.fields, &std::string::empty)) fail(row, "all fields are empty; remove the line");
    }

    std::string text(const Sheet::Row& row, const char* title) const {
        const auto column = indices.find(title);
        return column != indices.end() ? row.fields[column->second] : "";
    }

    Patch patchOf(const Sheet::Row& row) const {
        Patch patch{.name = text(row, "name"), .place = row.place};
        if (hasIds()) patch.fields.push_back(text(row, "sample_id"));
        for (const std::size_t index : deviceColumns) {
            patch.fields.push_back(withDecimalPoint(row.fields[index]));
        }
        const bool hasColumns = indices.contains("l*") && indices.contains("a*") && indices.contains("b*");
        if (hasColumns && !(text(row, "l*") + text(row, "a*") + text(row, "b*")).empty())
            patch.reading = readingOf(row);
        return patch;
    }

    Reading readingOf(const Sheet::Row& row) const {
        const auto value = [&](const char* title) { return static_cast<float>(number(row, text(row, title))); };
        Reading reading{{value("l*"), value("a*"), value("b*")}};
        for (const auto& [index, wavelength] : bands) {
            reading.spectrum.push_back({wavelength, static_cast<float>(number(row, row.fields[index]))});
        }
        return reading;
    }

    std::string withDecimalPoint(std::string field) const {
        if (sheet.hasDecimalCommas) std::ranges::replace(field, ',', '.');
        return field;
    }

    double number(const Sheet::Row& row, const std::string& field) const {
        const std::string digits = withDecimalPoint(field);
        const char* const end = digits.data() + digits.size();
        double value = 0;
        const auto [stop, error] = std::from_chars(digits.data(), end, value);
        constexpr double largest = std::numeric_limits<float>::max() / 100;
        if (error == std::errc{} && stop == end && std::abs(value) <= largest) return value;
        fail(row, fmt::format("\"{}\" is not a number; use the form -12.34", field));
    }

    const Sheet& sheet;
    /// The columns other than the following, by spm's title in lower case.
    std::map<std::string, std::size_t> indices;
    std::vector<std::size_t> deviceColumns;
    std::vector<Band> bands;
};

} // namespace

Run readSheet(const Sheet& sheet) {
    return SheetReader(sheet).read();
}

std::int32_t parseNumber(std::string_view text, std::int32_t otherwise) {
    std::int32_t number = otherwise;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::string lowerCase(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return text;
}

} // namespace spm

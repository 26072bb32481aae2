#pragma once

// Tables of texts. CSV and CGATS are read into them, so that both share the rules for columns, names and numbers.

#include "spm/run/Run.h"

#include <string>
#include <string_view>
#include <vector>

namespace spm {

struct Sheet {
    struct Row {
        /// For error messages: "line 3".
        std::string place;
        std::vector<std::string> fields;
    };

    /// The file in error messages.
    std::string description;
    Row titles{};
    std::vector<Row> rows{};
    /// The value of the perfect diffuser in columns of reflectance that are not in percent.
    std::string spectralNorm = "1";
    /// Whether numbers have a decimal comma.
    bool hasDecimalCommas = false;
};

/// Reads the patches and the chart's columns; the titles decide, in any case: names are in "name", "sample_name",
/// "patch", "sample" or "sample_id"; CIELab in "L*", "L" or "LAB_L" and so on; reflectance in percent in
/// "nm380_percent", or as a fraction in "SPECTRAL_NM380" and similar. Other columns are ignored.
/// @return a run with the patches and what else follows from the columns
/// @throws Error  with the place and the reason
Run readSheet(const Sheet& sheet);

/// The first field of a column.
/// @return empty if there is no such column
std::string firstField(const Sheet& sheet, std::string_view title);

/// The number that a text starts with, such as the observer in "10 degree".
/// @param otherwise  returned if there is none
std::int32_t parseNumber(std::string_view text, std::int32_t otherwise);

/// Puts a patch's name, or the title of that column, among the fields of the chart's columns: after SAMPLE_ID.
std::vector<std::string> withName(const Run& run, std::vector<std::string> fields, const std::string& name);

/// Whether the chart has SAMPLE_ID, which is the first of its columns then.
bool hasIds(const Run& run);

} // namespace spm

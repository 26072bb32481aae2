#pragma once

// Tables of texts. All formats are read into them, and so share the rules for columns, names and numbers.

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
    /// Whether numbers have a decimal comma.
    bool hasDecimalCommas = false;
};

/// Reads the patches and the chart's columns; the titles decide, in any case: names are in "name", "sample_name",
/// "patch", "sample" or "sample_id"; CIELab in "L*", "L" or "LAB_L" and so on; reflectance in percent in
/// "nm380_percent" or "SPECTRAL_NM380". Other columns are ignored, and so is the second one of a kind.
/// @return a run with the patches and what else follows from the columns
/// @throws Error  with the place and the reason
Run readSheet(const Sheet& sheet);

/// The number that a text starts with, such as the observer in "10 degree".
/// @param otherwise  returned if there is none
std::int32_t parseNumber(std::string_view text, std::int32_t otherwise);

/// ASCII letters in lower case.
std::string lowerCase(std::string text);

} // namespace spm

#pragma once

// What all formats share: the columns of numbers, and the facts about a run.

#include "spm/run/Run.h"

#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace spm {

/// A column of numbers.
struct Column {
    /// In all formats but CGATS.
    std::string title;
    std::string cgatsTitle;
    /// The value of a measured patch; none if there is nothing to compare with.
    std::function<std::optional<double>(const Patch&)> valueOf;
};
using Columns = std::vector<Column>;

/// Begins the title of a column of reflectance in CGATS, before the wavelength.
inline constexpr std::string_view spectralPrefix = "SPECTRAL_NM";

// The run must outlive its columns.

/// CIELab and, if they are to be written, X, Y and Z.
Columns measuredColumns(const Run& run);
/// Reflectance in percent; no columns without spectra.
Columns spectralColumns(const Run& run);
/// The differences: CIEDE2000, and in L*, a* and b*. Then the expected values. No columns without a reference.
Columns comparisonColumns(const Run& run);

Columns allColumns(const Run& run);

Columns joined(std::initializer_list<Columns> parts);

/// A number for each column; none for a patch that was not measured.
std::vector<std::optional<double>> numbersOf(const Patch& patch, const Columns& columns);

/// The same with four decimals; empty texts for missing numbers.
std::vector<std::string> fieldsOf(const Patch& patch, const Columns& columns);

/// What applies to a whole run, by the title of its column in CSV. An empty text stands for what is unknown.
std::vector<std::pair<std::string, std::string>> factsOf(const Run& run);

/// Inverts factsOf.
/// @param textOf  looks up a fact in a file; empty if the file doesn't say it
void takeFacts(Run& run, const std::function<std::string(const char*)>& textOf);

/// Puts a patch's name, or the title of that column, among the fields of the chart's columns: after SAMPLE_ID.
std::vector<std::string> withName(const Run& run, std::vector<std::string> fields, const std::string& name);

/// Whether the chart has SAMPLE_ID, which is the first of its columns then.
bool hasIds(const Run& run);
inline constexpr const char* idTitle = "SAMPLE_ID";

} // namespace spm

#pragma once

// The file formats of a run. Each contains all patches of the chart, measured or not, and all that going on needs.

#include "spm/run/Run.h"

#include <string>

namespace spm {

enum class Format { table, csv, json, cgats };

// Lines end with '\n', and numbers have a decimal point in every locale. Each format contains the run's conditions and,
// for simulated values, a note; CSV and JSON also contain the expected values and differences.

/// Comma-separated values with a header line, quoted as in RFC 4180, with a line for each patch of the chart. What
/// applies to the whole run is repeated in each line. Missing values are empty fields; the last column has the reason.
std::string formatCsv(const Run& run);

/// An object with all patches of the chart; a patch without values has a member "notMeasured" with the reason. Bytes
/// that are not UTF-8 become U+FFFD.
std::string formatJson(const Run& run);

/// ANSI CGATS.17 text: one table with the measured patches. SAMPLE_ID is the chart's, or else the place in the chart,
/// from 1. The patches that were not measured are in comments, since the format has no missing values.
/// @param run  names that fitsCgats accepts
std::string formatCgats(const Run& run);

/// Whether CGATS can contain a text: as it has no escapes, quotes and control characters are not possible, and some
/// programs repeat the previous value for an empty string.
bool fitsCgats(const std::string& text);

// Each of these reads a run from a text. What the text doesn't say is empty, as described for Run.
// description: the text in error messages, "the chart file chart.csv"
// All throw Error with the description, if possible the line, and the reason.

Run readCsv(const std::string& text, const std::string& description);
Run readJson(const std::string& text, const std::string& description);
/// Reads the first table with samples.
Run readCgats(const std::string& text, const std::string& description);
bool isCgats(const std::string& text);

} // namespace spm

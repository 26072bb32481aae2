#pragma once

// The file formats of a run. CSV, JSON and CGATS contain all patches of the chart, measured or not, and all that going
// on needs.

#include "spm/run/Comparison.h"
#include "spm/run/Run.h"

#include <filesystem>
#include <span>
#include <string>

namespace spm {

// Lines end with '\n', and numbers have a decimal point in every locale. Each format contains the run's conditions and,
// for simulated values, a note; CSV, JSON and the report also contain the expected values and differences.

/// Comma-separated values with a header line, quoted as in RFC 4180, with a line for each patch of the chart. What
/// applies to the whole run is repeated in each line. Missing values are empty fields; the last column has the reason.
std::string formatCsv(const Run& run);

/// An object with all patches of the chart, with the same names as in CSV; missing values are null. Bytes that are not
/// UTF-8 become U+FFFD.
std::string formatJson(const Run& run);

/// ANSI CGATS.17 text: one table with the measured patches. SAMPLE_ID is the chart's, or else the place in the chart,
/// from 1. The patches that were not measured are in comments, since the format has no missing values.
/// @param run  names that fitsCgats accepts
std::string formatCgats(const Run& run);

/// Whether CGATS can contain a text: as it has no escapes, quotes and control characters are not possible, and some
/// programs repeat the previous value for an empty string.
bool fitsCgats(const std::string& text);

/// A self-contained HTML page with the run's conditions, the colours and values of the patches, the comparison with the
/// reference if there is one, and the spectra as curves. The run's strings must be UTF-8.
std::string htmlReport(const Run& run);

/// The page's Mustache template, generated from report.html.
extern const char* const reportTemplate;

// Tables for reading, at most 80 columns wide; long names are cut. Patches without values are left out.

/// @param withHeader  whether to begin with the titles, and the origin of calculated values
std::string formatTable(const Run& run, std::span<const Patch> patches, bool withHeader);

/// A blank line and a table of differences and statistics; empty without a reference.
std::string formatComparison(const Run& run);

// Each of these reads a run from a text. What the text doesn't say is empty, as described for Run.
// description: the text in error messages, "the chart file chart.csv"
// All throw Error with the description, if possible the line, and the reason.

Run readCsv(const std::string& text, const std::string& description);
Run readJson(const std::string& text, const std::string& description);
/// Reads the first table with samples.
Run readCgats(const std::string& text, const std::string& description);

/// Reads CSV with a header line, CGATS text, or the JSON that formatJson writes; the content decides, not the file
/// name. The text must be UTF-8. CSV may have semicolons or tabs between the fields, and decimal commas then.
/// @param what  the file's description in error messages: "the chart file"
/// @return a run with at least one patch; what the file doesn't say is empty, as described for Run
/// @throws Error, with the file, if possible the line, and the reason
Run readRun(const std::filesystem::path& file, std::string_view what);

/// Reads expected values.
/// @param conditions  those of the values to compare with; what the file says about its own must not differ
/// @throws Error  like readRun; also if a name is not unique or a value is missing
Reference readReference(const std::filesystem::path& file, const Conditions& conditions);

} // namespace spm

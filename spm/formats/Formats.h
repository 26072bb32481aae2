#pragma once

// The file formats of a run.

#include "spm/formats/Run.h"

#include <string>

namespace spm {

// Lines end with '\n', and numbers have a decimal point in every locale. Each format contains the run's conditions and,
// for simulated values, a note; with a reference, also the differences.
// All functions throw Error if no patch was measured or a value is not finite.

/// Comma-separated values with a header line, quoted as in RFC 4180, with a line for each patch of the chart. The
/// conditions are columns, too. Missing values are empty fields, and the last column has the reason. Bytes of names are
/// kept.
std::string formatCsv(const Run& run);

/// An object with all patches of the chart; a patch without values has a member "notMeasured" with the reason. Bytes
/// that are not UTF-8 become U+FFFD.
std::string formatJson(const Run& run);

/// ANSI CGATS.17 text. The format has no missing values: readings with different columns go into separate tables, and
/// patches without values into comments. SAMPLE_ID is the patch's place in the chart, from 1. As the format has no
/// escapes, quotes in strings become apostrophes, and control characters become blanks; an empty string becomes "-".
/// Other bytes are kept.
std::string formatCgats(const Run& run);

} // namespace spm

#pragma once

// The forms that a run can be written in.

#include "spm/formats/Run.h"

#include <string>

namespace spm {

// Lines end in '\n', numbers have a decimal point whatever the locale is, and each form tells the run's conditions and
// whether the values were simulated. With a reference, each has the differences.
// All throw Error when no patch was measured, or a value is not finite.

/// Comma-separated values with a header line, quoted by RFC 4180, a line for each patch of the chart; the conditions
/// are columns, too. A value that was not measured is an empty field, and the last column says why. Names are kept byte
/// by byte.
std::string formatCsv(const Run& run);

/// All patches of the chart; one without values has a member "notMeasured" with the reason. Bytes that are not UTF-8
/// become U+FFFD.
std::string formatJson(const Run& run);

/// The text form of ANSI CGATS.17, which has no missing values: readings with other columns are in further tables, and
/// patches that were not measured in comments. SAMPLE_ID is the patch's place in the chart, from 1.
/// In texts, quotes become apostrophes and control characters blanks, since a text can't escape them; an empty one
/// becomes "-". Bytes that are not ASCII are kept.
std::string formatCgats(const Run& run);

} // namespace spm

#pragma once

// The forms that a run can be written in.

#include "spm/formats/Run.h"

#include <string>

namespace spm {

// Lines end in '\n', numbers have a decimal point whatever the locale is, and each form tells whether the values were
// simulated and, where there is CIELab, that it is for D65 and 10 degree.
// All throw Error when there are no readings, or one of them has no values or one that is not finite.

/// Comma-separated values with a header line, quoted by RFC 4180; the conditions are columns, too. A value that was
/// not measured is an empty field. Names are kept byte by byte.
std::string formatCsv(const Run& run);

/// What was not measured is not there. Bytes that are not UTF-8 become U+FFFD.
std::string formatJson(const Run& run);

/// The text form of ANSI CGATS.17, which has no missing values: readings with other columns stand in further tables,
/// with the numbers that they have in the run.
/// In texts, quotes become apostrophes and control characters blanks, since a text can't escape them; an empty one
/// becomes "-". Bytes that are not ASCII are kept.
std::string formatCgats(const Run& run);

} // namespace spm

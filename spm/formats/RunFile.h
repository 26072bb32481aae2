#pragma once

// Reads files of patches: charts, references and the output of an earlier run.

#include "spm/run/Comparison.h"
#include "spm/run/Run.h"

#include <filesystem>
#include <string_view>

namespace spm {

/// Reads CSV with a header line, CGATS text, or the JSON that formatJson writes; the content decides, not the file
/// name. The text must be UTF-8. CSV may have semicolons or tabs between the fields, and decimal commas then.
/// @param what  the file's description in error messages: "the chart file"
/// @return a run with at least one patch; what the file doesn't say is empty, as described for Run
/// @throws Error  with the file, if possible the line, and the reason
Run readRun(const std::filesystem::path& file, std::string_view what);

/// Reads expected values.
/// @param conditions  those of the values to compare with; what the file says about its own must not differ
/// @throws Error  like readRun; also if a name is not unique, or a value is missing or not from -500 to 500
Reference readReference(const std::filesystem::path& file, const Conditions& conditions);

} // namespace spm

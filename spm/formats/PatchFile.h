#pragma once

// Reads files of patches: charts, references and the output of an earlier run.

#include "spm/formats/Run.h"

#include <filesystem>
#include <string_view>
#include <vector>

namespace spm {

/// The purpose of a file, which determines what it must contain.
enum class PatchFileKind {
    run,      ///< names in any encoding
    chart,    ///< names in UTF-8
    reference ///< unique names in UTF-8, each with L*, a* and b* from -500 to 500
};

/// Reads CSV with a header line, CGATS text, or the JSON that formatJson writes; the content decides, not the file
/// name. The header identifies the columns, in any case: names in "name", "sample_name", "patch", "sample" or
/// "sample_id"; "L*", "L" or "LAB_L" and so on; reflectance in percent in "nm380_percent", or as a fraction in
/// "SPECTRAL_NM380" and similar. Other columns are ignored. Numbers have a decimal point in every locale.
/// @param what  the file's description in error messages: "the chart file"
/// @return the patches in the file's order, without duplicates from several CGATS tables; never empty
/// @throws Error, common::CsvError or common::TextError  with the file, if possible the line, and the reason
std::vector<Reading> readPatches(const std::filesystem::path& file, std::string_view what, PatchFileKind kind);

/// Whether a file written by spm has simulated values.
/// @throws Error  if it can't be read
bool isSimulated(const std::filesystem::path& runFile);

/// Whether the CIELab values in a file written by spm have the same illuminant, observer and origin.
/// @throws Error  if it can't be read
bool hasConditions(const std::filesystem::path& runFile, const Conditions& conditions);

} // namespace spm

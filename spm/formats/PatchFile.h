#pragma once

// Reads files that name patches: charts, references and what an earlier run wrote.

#include "spm/formats/Run.h"

#include <filesystem>
#include <string_view>
#include <vector>

namespace spm {

/// What patches are read for, and so what their file must have.
enum class PatchFileKind {
    run,      ///< names, with the bytes that they had when they were measured
    chart,    ///< names in UTF-8
    reference ///< the same, each once and with an L*, a* and b* from -500 to 500
};

/// Reads CSV with a header line, the text form of CGATS, or the JSON that formatJson writes, told apart by the content.
/// Columns are found by the header: the names in "name", "sample_name", "patch", "sample" or "sample_id"; "L*", "L" or
/// "LAB_L" and so on; reflectance in "nm380_percent", or as fractions in "SPECTRAL_NM380" and the like; case does not
/// count. Other columns are skipped, and values that are missing are left out. Numbers have a decimal point, whatever
/// the user's locale.
/// @return the patches in the file's order, without duplicates from several CGATS tables; never empty
/// @param what  what the file is, as errors name it: "the chart file"
/// @throws Error or common::CsvError  with the file, where possible the line, and what is wrong
std::vector<Reading> readPatches(const std::filesystem::path& file, std::string_view what, PatchFileKind kind);

/// Whether a file that spm wrote has simulated values.
/// @throws Error  when it can't be read
bool isSimulated(const std::filesystem::path& runFile);

/// Whether the CIELab values in a file that spm wrote are for these conditions, and obtained in the same way.
/// @throws Error  when it can't be read
bool isFor(const std::filesystem::path& runFile, const Conditions& conditions);

} // namespace spm

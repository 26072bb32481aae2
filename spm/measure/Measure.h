#pragma once

#include "spm/formats/Reference.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace spm {

enum class Format { byName, table, csv, json, cgats };

/// What to measure, and what to make of it.
struct MeasureOptions {
    std::filesystem::path module;
    /// The patches' names, or a file that names them.
    std::vector<std::string> names;
    std::filesystem::path chart;
    /// 0 for as many as there are names for; 4 without names.
    std::int32_t rows = 0;
    std::int32_t patches = 6;
    /// How many spots to measure in place of rows; 0 for rows.
    std::int32_t spots = 0;
    /// The row or spot to begin with, from 1; values of earlier ones are taken from the output file, if there is one.
    std::int32_t firstRow = 1;
    /// When neither is asked for: CIELab.
    bool lab = false;
    bool spectra = false;
    /// What CIELab values are for. Calculated ones are made of spectra, which are measured in place of the module's
    /// values.
    Conditions conditions{};
    bool withXyz = false;
    /// Of the output file, or without one of standard output. Not given: as the file's name ends, or a table.
    Format format = Format::byName;
    /// Files to write; empty for none.
    std::filesystem::path output;
    std::filesystem::path report;
    /// Whether these may be there already.
    bool overwrite = false;
    /// The expected values of the patches; empty for none.
    std::filesystem::path reference;
    /// How to compare with them, and what is tolerated.
    Formula difference = Formula::ciede2000;
    Limits limits;
};

/// Whether all was measured, or something was left out by the person's wish; of what is complete, whether the
/// differences from the reference are within the limits. The numbers are exit statuses.
enum class Outcome { complete = 0, incomplete = 3, outOfTolerance = 4 };

/// Calibrates and measures. What was read is written even when something fails later.
/// @throws Error  when something fails
Outcome measure(const MeasureOptions& wanted);

} // namespace spm

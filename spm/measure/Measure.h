#pragma once

#include "spm/formats/Reference.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace spm {

enum class Format { byExtension, table, csv, json, cgats };

/// The options of "spm measure".
struct MeasureOptions {
    std::filesystem::path module;
    /// The patch names; empty for those of the chart file.
    std::vector<std::string> names;
    /// The file that names the patches; empty for none. If both are empty, the patches are numbered.
    std::filesystem::path chart;
    /// The number of rows; 0 for as many as the names fill, or 4 without names.
    std::int32_t rows = 0;
    std::int32_t patchesInRow = 6;
    /// The number of spots to measure instead of rows; 0 for rows.
    std::int32_t spots = 0;
    /// The row or spot to start with, from 1. Values of earlier ones are read from the output file if it exists.
    std::int32_t firstRow = 1;
    /// What to measure; CIELab if neither is set.
    bool lab = false;
    bool spectra = false;
    /// If these ask for calculated CIELab values, only spectra are measured.
    Conditions conditions{};
    bool withXyz = false;
    /// The format of the output file or, without one, of standard output.
    Format format = Format::byExtension;
    /// Files to write; empty for none.
    std::filesystem::path output;
    std::filesystem::path report;
    /// Whether these files may exist already.
    bool overwrite = false;
    /// The file of expected values; empty for none.
    std::filesystem::path reference;
    Formula difference = Formula::ciede2000;
    Limits limits;
};

/// The result of a run without errors; the values are exit statuses. A run is incomplete if the user skipped patches or
/// stopped it.
enum class Outcome { complete = 0, incomplete = 3, outOfTolerance = 4 };

/// Calibrates the instrument and measures. If something fails, the values measured before are still written.
/// @throws Error
Outcome measure(const MeasureOptions& requested);

} // namespace spm

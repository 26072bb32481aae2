#pragma once

// What to measure and where to write it, determined from the options before the module is loaded.

#include "spm/formats/Formats.h"
#include "spm/run/Comparison.h"
#include "spm/run/Run.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace spm {

/// The options of "spm measure", as given.
struct MeasureOptions {
    std::filesystem::path module;
    /// The patch names; empty for those of the chart file.
    std::vector<std::string> names;
    /// The file that names the patches; empty for none. If both are empty, the patches are numbered.
    std::filesystem::path chart;
    std::optional<std::int32_t> rows;
    std::optional<std::int32_t> patchesInRow;
    std::optional<std::int32_t> spots;
    bool spectra = false;
    std::optional<std::string> illuminant;
    std::optional<std::int32_t> observer;
    bool withXyz = false;
    /// The format of standard output.
    std::optional<Format> format;
    /// Files to write; empty for none.
    std::filesystem::path output;
    std::filesystem::path report;
    /// Whether these files may exist already.
    bool overwrite = false;
    /// Whether to go on with the run in the output file.
    bool resume = false;
    /// The file of expected values; empty for none.
    std::filesystem::path reference;
    Formula difference = Formula::ciede2000;
    Limits limits;
    std::chrono::seconds waitLimit{300};
    /// The words of the command line after "spm".
    std::vector<std::string> words;
};

struct Plan {
    std::filesystem::path module;
    /// Files to write; empty for none.
    std::filesystem::path output;
    std::filesystem::path report;
    /// The format of the output file or, without one, of standard output.
    Format format = Format::table;
    /// Whether tables contain the spectra.
    bool showsSpectra = false;
    /// How long to wait for the user to press the button.
    std::chrono::seconds waitLimit{300};
    /// The chart and the conditions; with the readings of the output file if the run goes on.
    Run run;
    bool isResumed = false;
    /// The command that goes on with the run.
    std::string resumeCommand;
};

/// Checks all that can be checked before the instrument is opened, so that a user doesn't measure a chart only to find
/// that it can't be saved.
/// @throws Error  if the options contradict each other or a file, or a file can't be read or written
Plan planOf(const MeasureOptions& options);

} // namespace spm

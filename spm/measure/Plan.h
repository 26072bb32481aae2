#pragma once

// What to measure and where to write it, determined from the options before the module is loaded.

#include "spm/formats/Formats.h"
#include "spm/run/Comparison.h"
#include "spm/run/Run.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace spm {

struct Plan {
    std::filesystem::path module{};
    /// Files to write; empty for none.
    std::filesystem::path output{};
    std::filesystem::path report{};
    /// Writes the output file's format or, without one, standard output's; null for tables on standard output.
    std::string (*format)(const Run&) = nullptr;
    /// How long to wait for the user to press the button, in seconds.
    std::int32_t waitLimit = 300;
    /// Whether to go on with the run in the output file.
    bool isResumed = false;
    /// The command that goes on with the run.
    std::string resumeCommand{};
    /// The chart and the conditions; with the readings of the output file if the run goes on.
    Run run{};
};

/// The options of "spm measure", as given; an empty text or 0 stands for an option that was not.
struct MeasureOptions {
    /// Those that need no interpretation: the files, the limit, and whether the run goes on.
    Plan plan;
    std::vector<std::string> names;
    /// The file that names the patches.
    std::filesystem::path chart;
    std::int32_t rows = 0;
    std::int32_t patchesInRow = 0;
    std::int32_t spots = 0;
    bool spectra = false;
    std::string illuminant;
    std::int32_t observer = 0;
    bool withXyz = false;
    /// The format of standard output: "csv".
    std::string format = "table";
    /// Whether the files to write may exist already.
    bool overwrite = false;
    /// The file of expected values.
    std::filesystem::path reference;
    /// Limits: "mean=2".
    std::vector<std::string> tolerance;
    /// The words of the command line after "spm".
    std::vector<std::string> words;
};

/// Checks all that can be checked before the instrument is opened, so that a user doesn't measure a chart only to find
/// that it can't be saved.
/// @throws Error  if the options contradict each other or a file, or a file can't be read or written
Plan planOf(const MeasureOptions& options);

} // namespace spm

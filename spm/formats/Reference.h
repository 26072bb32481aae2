#pragma once

// Compares measured CIELab values with expected ones, which must be for the same illuminant and observer.

#include "spm/formats/DeltaE.h"
#include "spm/formats/Run.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace spm {

/// The upper limits of statistics by key: "mean", "median", "p90", "p95", "max".
using Limits = std::map<std::string, double>;

/// @param text  such as "mean=2,max=5"
/// @throws UsageError  with the allowed form
Limits parseLimits(const std::string& text);

/// The expected values of patches, and how to compare with them.
struct Reference {
    std::filesystem::path file;
    /// By name.
    std::map<std::string, SPM_LAB> patches;
    Formula formula = Formula::ciede2000;
    Limits limits{};
};

/// @throws Error, common::CsvError or common::TextError  with the file, the line, the reason and what to do
Reference readReference(const std::filesystem::path& file);

struct Difference {
    SPM_LAB expected;
    double deltaE;
};

/// The difference of a reading from its expected value.
/// @return none without a reference, for a reading without CIELab values, or if the reference doesn't have the patch
std::optional<Difference> differenceOf(const Run& run, const Reading& reading);

/// The readings by decreasing difference; those without one follow in the order of the chart.
std::vector<Reading> worstFirst(const Run& run);

/// A statistic of all differences. Percentiles are nearest-rank.
struct Statistic {
    /// As in Limits and in JSON: "p90".
    std::string key;
    /// As in tables: "90th percentile".
    std::string name;
    double value;
    std::optional<double> limit;

    bool isWithinLimit() const { return !limit || value <= *limit; }
    /// " (at most 2: passed)" or " (at most 2: FAILED by 0.003)", to append to the value; empty without a limit.
    std::string verdict() const;
};

struct Comparison {
    std::vector<Statistic> statistics;
    /// The number of patches compared; at least 1.
    std::size_t patches;
    /// Measured patches that the reference doesn't have, in the order of measurement.
    std::vector<std::string> notInReference;
    /// Patches of the reference without measured CIELab values, in alphabetical order.
    std::vector<std::string> notMeasured;
    bool isWithinLimits;
};

/// @return none if there is no reference, or no patch to compare
std::optional<Comparison> compare(const Run& run);

/// Lines with the patches that were not compared and the reason; empty if there are none.
std::string describeUncompared(const Comparison& comparison);

/// A blank line and a table of differences and statistics; empty without a reference.
std::string formatComparison(const Run& run);

} // namespace spm

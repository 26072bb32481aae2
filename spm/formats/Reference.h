#pragma once

// Measured CIELab values compared with those that were expected, which must be for the same conditions.

#include "spm/formats/DeltaE.h"
#include "spm/formats/Run.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace spm {

/// The largest values that are tolerated, by the key of the statistic: "mean", "median", "p90", "p95", "max".
using Limits = std::map<std::string, double>;

/// @param text  such as "mean=2,max=5"
/// @throws UsageError  with what is allowed
Limits parseLimits(const std::string& text);

/// The expected values of patches, and how to compare with them.
struct Reference {
    std::filesystem::path file;
    /// By name.
    std::map<std::string, SPM_LAB> patches;
    Formula formula = Formula::ciede2000;
    Limits limits{};
};

/// @throws Error or common::CsvError  with the file, the line, what is wrong and what would be right
Reference readReference(const std::filesystem::path& file);

struct Difference {
    SPM_LAB expected;
    double deltaE;
};

/// The difference of a patch that was measured and expected; one that was measured repeatedly has one each time.
/// @return none without a reference or CIELab values, or when the reference doesn't have the patch
std::optional<Difference> differenceOf(const Run& run, const Reading& reading);

/// The patches in the order of the chart, or with a reference first those that were compared, the worst first.
std::vector<Reading> worstFirst(const Run& run);

/// One number for all differences. Percentiles are by nearest rank: the least of the differences that so many percent
/// of them don't exceed.
struct Statistic {
    /// As in limits and in files: "p90".
    std::string key;
    /// For people: "90th percentile".
    std::string name;
    double value;
    std::optional<double> limit;

    bool isWithinLimit() const { return !limit || value <= *limit; }
    /// " (at most 2: passed)" or " (at most 2: FAILED by 0.003)", to follow the value; empty without a limit.
    std::string verdict() const;
};

struct Comparison {
    std::vector<Statistic> statistics;
    /// How many patches were compared, more than 0.
    std::size_t patches;
    /// Patches with measured CIELab values that the reference doesn't have, in the order of the measurement.
    std::vector<std::string> notInReference;
    /// Patches of the reference without measured CIELab values, in alphabetical order.
    std::vector<std::string> notMeasured;
    bool isWithinLimits;
};

/// @return none when there is nothing to compare, or no reference
std::optional<Comparison> compare(const Run& run);

/// Lines that name the patches that were not compared, and why; empty when all were.
std::string notCompared(const Comparison& comparison);

/// A blank line and a table for people; empty without a reference.
std::string formatComparison(const Run& run);

} // namespace spm

#pragma once

// Compares measured CIELab values with expected ones, which must be for the same illuminant and observer.

#include "spm/colour/Difference.h"
#include "spm/run/Run.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace spm {

/// The upper limits of statistics by key: "mean", "median", "p90", "p95", "max".
using Limits = std::map<std::string, double>;

/// @param texts  such as "mean=2" and "max=5"
/// @throws UsageError  with the allowed form
Limits parseLimits(const std::vector<std::string>& texts);

/// The expected values of patches, and how to compare with them.
struct Reference {
    std::filesystem::path file{};
    /// By name.
    std::map<std::string, SPM_LAB> patches{};
    Limits limits{};
    /// Whether the file says its illuminant and observer.
    bool statesConditions = false;
};

/// What a reference is, for the titles of a comparison: its file and, if it doesn't say its conditions, a note.
std::string describe(const Reference& reference);

struct Difference {
    SPM_LAB expected;
    /// Measured minus expected.
    SPM_LAB delta;
    double deltaE;
};

/// The difference of a patch from its expected value.
/// @return none without a reference, for a patch that was not measured, or that the reference doesn't have
std::optional<Difference> differenceOf(const Run& run, const Patch& patch);

/// The patches by decreasing difference; those without one follow in the order of the chart.
std::vector<Patch> worstFirst(const Run& run);

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
    /// The number of patches compared, and of patches measured.
    std::size_t compared = 0;
    std::size_t measured = 0;
    /// Measured patches that the reference doesn't have, in the order of measurement.
    std::vector<std::string> notInReference;
    /// Patches of the reference that were not measured, in alphabetical order.
    std::vector<std::string> notMeasured;
    bool isWithinLimits = true;

    /// "23 of 24 patches compared".
    std::string coverage() const;
};

/// @return none if there is no reference; without statistics if there is no patch to compare
std::optional<Comparison> compare(const Run& run);

/// A strip that readings match better than the one that they were measured for.
struct Fit {
    Strip strip;
    bool isReversed;
    /// The mean CIEDE2000 from the expected values.
    double mean;
};

/// Detects that the user measured the wrong strip, or the right one in reverse: compares the readings with the expected
/// values of all strips.
/// @param readings  a reading for each patch of the strip
/// @param run       has the patches of all strips, and a reference
/// @return none if the strip fits well, or no other one both fits well and clearly better
std::optional<Fit> findBetterFit(const std::vector<Reading>& readings, const Strip& strip, const Run& run);

/// Lines with the patches that were not compared and the reason; empty if there are none.
std::string describeUncompared(const Comparison& comparison);

} // namespace spm

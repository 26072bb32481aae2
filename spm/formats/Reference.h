#pragma once

// Measured CIELab values compared with those that were expected, which must be for the same conditions.

#include "spm/formats/Run.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace spm {

/// The expected values of patches.
struct Reference {
    std::filesystem::path file;
    /// By name.
    std::map<std::string, SPM_LAB> patches;
};

/// @throws Error or common::CsvError  with the file, the line, what is wrong and what would be right
Reference readReference(const std::filesystem::path& file);

/// A patch that was measured and expected.
struct PatchDifference {
    std::string name;
    SPM_LAB measured;
    SPM_LAB expected;
    /// CIEDE2000.
    double deltaE;
};

struct Comparison {
    /// The reference's file.
    std::filesystem::path file;
    /// What the measured values are for, as in the heads of tables.
    std::string conditions;
    /// The worst first; never empty.
    std::vector<PatchDifference> patches;
    double mean;
    /// By nearest rank: the least of the differences that 95 % of them don't exceed.
    double percentile95;
    double maximum;
    /// Patches with measured CIELab values that the reference doesn't have, in the order of the measurement.
    std::vector<std::string> notInReference;
    /// Patches of the reference without measured CIELab values, in alphabetical order.
    std::vector<std::string> notMeasured;
};

/// Compares the patches that have the same name; one that was measured repeatedly, each time. Readings without CIELab
/// values don't count.
/// @throws Error  when there is nothing to compare
Comparison compare(const Run& run, const Reference& reference);

/// A table for people, in lines.
std::string formatComparison(const Comparison& comparison);

} // namespace spm

#pragma once

// The results of a run, from which all output formats are made.

#include "module/SPM.h"
#include "spm/colour/Colorimetry.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace spm {

struct Reference;

/// A patch of the chart and its measured values.
struct Reading {
    std::string name;
    /// For the run's conditions.
    std::optional<SPM_LAB> lab;
    /// Reflectance in percent by wavelength in nm; empty if not measured.
    std::vector<SPM_REFLECTION> spectrum;
    /// Why values are missing, such as "skipped"; empty if none are, or the patch wasn't reached yet.
    std::string missingReason{};

    bool isMeasured() const { return lab || !spectrum.empty(); }
};

/// Consecutive patches that were not measured for the same reason.
struct Gap {
    /// Places in the chart, from 1; both inclusive.
    std::size_t first;
    std::size_t last;
    std::string reason;
};

struct Run {
    /// Start time in UTC as ISO 8601: "2026-11-23T09:30:00Z".
    std::string started;
    /// The module's file and its version, such as "5.9.0.3".
    std::string module;
    std::string version;
    /// The description of the simulation; empty for a real instrument.
    std::string simulation;
    /// The number of patches in a row; 0 for spots.
    std::int32_t patchesInRow = 0;
    /// The instrument as the module names it; empty if none was opened.
    std::string instrument{};
    Conditions conditions{};
    /// Whether to write X, Y and Z in addition to CIELab.
    bool withXyz = false;
    /// All patches of the chart in order, measured or not.
    std::vector<Reading> readings;
    /// The expected values; null if there are none.
    std::shared_ptr<const Reference> reference{};
};

/// @throws Error  if no patch was measured or a value is not finite
void requireValues(const Run& run);

/// @throws Error  if a value is not finite
void requireFinite(const Reading& reading);

/// Why a patch has no values; never empty.
std::string missingReasonOf(const Reading& reading);

std::size_t measuredCount(const Run& run);

/// How much of the chart was measured: "12 of 18 patches".
std::string coverage(const Run& run);

/// All gaps, in the order of the chart.
std::vector<Gap> gaps(const Run& run);

/// "patches 7 to 12 not measured: skipped".
std::string describe(const Gap& gap);

/// Whether any reading has CIELab values.
bool hasLab(const Run& run);

/// X, Y and Z of a reading; none if the run doesn't ask for them, or the reading has no CIELab values.
std::optional<Xyz> xyzOf(const Run& run, const Reading& reading);

/// The wavelengths of all spectra.
std::set<std::int32_t> wavelengths(const Run& run);

/// The reflectance in percent at a wavelength; none if it wasn't measured.
std::optional<float> reflectance(const Reading& reading, std::int32_t wavelength);

} // namespace spm

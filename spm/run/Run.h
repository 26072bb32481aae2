#pragma once

// A run: one chart, measured once. All output formats are made from it, and a run that goes on is read back into it.

#include "module/SPM.h"
#include "spm/colour/Colorimetry.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace spm {

struct Reference;

/// Run::patchesInRow if a file that was read doesn't say it.
inline constexpr std::int32_t unknownRows = -1;

/// Reflectance in percent by wavelength in nm.
using Spectrum = std::vector<SPM_REFLECTION>;

/// The values of a patch. In a run, either all readings have a spectrum of the same wavelengths, or none has.
struct Reading {
    /// For the run's conditions; calculated from the spectrum, if there is one.
    SPM_LAB lab;
    Spectrum spectrum{};
};

/// Patch::missingReason of a patch that was not skipped.
inline constexpr const char* notReached = "not reached";

struct Patch {
    std::string name;
    /// The texts in the run's chart columns.
    std::vector<std::string> fields{};
    /// Where the patch is in the file that names it: "line 3".
    std::string place{};
    /// None if it was not measured.
    std::optional<Reading> reading{};
    /// Why it was not measured; of no importance if it was.
    std::string missingReason = notReached;
};

struct Run {
    /// Start time in UTC as ISO 8601: "2026-11-23T09:30:00Z".
    std::string started{};
    /// The module's file and its version, such as "5.9.0.3".
    std::string module{};
    std::string version{};
    /// The instrument as the module names it; empty if none was opened.
    std::string instrument{};
    /// The description of the simulation; empty for a real instrument.
    std::string simulation{};
    Conditions conditions{};
    /// Whether to write X, Y and Z in addition to CIELab.
    bool withXyz = false;
    /// The name of the chart's file; empty without one.
    std::string chart{};
    /// The titles of the chart's columns that are written as they are: SAMPLE_ID, and device values such as CMYK_C.
    std::vector<std::string> chartColumns{};
    /// The number of patches in a row; 0 for spots.
    std::int32_t patchesInRow = 0;
    /// All patches of the chart in order, measured or not.
    std::vector<Patch> patches{};
    /// The expected values; null if there are none.
    std::shared_ptr<const Reference> reference{};
};

/// Patches measured in one stroke: a row, or a spot.
struct Strip {
    /// The index of the first patch in the run.
    std::size_t first;
    std::size_t count;
    /// "Row 2 of 4".
    std::string name;
};

/// All strips of the chart, in order. The last row may be shorter than the others.
std::vector<Strip> stripsOf(const Run& run);

/// @tparam AnyRun  Run or const Run
template <class AnyRun>
auto patchesOf(AnyRun& run, const Strip& strip) {
    return std::span(run.patches).subspan(strip.first, strip.count);
}

/// Whether all patches are measured.
bool isComplete(std::span<const Patch> patches);

std::size_t measuredCount(std::span<const Patch> patches);

/// How much of the chart was measured: "12 of 18 patches".
std::string coverage(const Run& run);

/// Consecutive patches that were not measured for the same reason, as in "patches 7 to 12 not measured: skipped"; an
/// element for each gap, in the order of the chart.
std::vector<std::string> gaps(const Run& run);

/// The observer's name: "10 degree".
std::string observerOf(const Conditions& conditions);
/// "D65/10 degree".
std::string describe(const Conditions& conditions);

/// X, Y and Z of a reading.
Xyz xyzOf(const Run& run, const Reading& reading);

} // namespace spm

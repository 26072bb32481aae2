#pragma once

// What a measuring run gave: the one thing that all output forms are made of.

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

/// A patch of the chart, and what was measured of it.
struct Reading {
    std::string name;
    /// For the run's conditions.
    std::optional<SPM_LAB> lab;
    /// Reflectance in percent at each wavelength in nm; empty when it was not measured.
    std::vector<SPM_REFLECTION> spectrum;
    /// Why values are missing, such as "skipped"; empty when none is, or when it is still to be measured.
    std::string gap{};

    bool isMeasured() const { return lab || !spectrum.empty(); }
};

/// Patches that follow one another and were not measured for the same reason.
struct Gap {
    /// Places in the chart, from 1.
    std::size_t first;
    std::size_t last;
    std::string reason;
};

struct Run {
    /// When it began, in UTC by ISO 8601: "2026-11-23T09:30:00Z".
    std::string started;
    /// The module's file and its version, such as "5.9.0.3".
    std::string module;
    std::string version;
    /// What the values come from when they are simulated; empty for an instrument.
    std::string simulation;
    /// How many patches a row has; 0 when spots were measured.
    std::int32_t patchesInRow = 0;
    /// The instrument as the module names it; empty when none was opened.
    std::string instrument{};
    Conditions conditions{};
    /// Whether X, Y and Z are written beside CIELab.
    bool withXyz = false;
    /// All patches of the chart in their order, measured or not.
    std::vector<Reading> readings;
    /// What to compare the readings with; null for nothing.
    std::shared_ptr<const Reference> reference{};
};

/// @throws Error  when no patch was measured, or a value is not finite
void requireValues(const Run& run);

/// @throws Error  when one of the reading's values is not finite
void requireFinite(const Reading& reading);

/// Why a patch has no values.
std::string reasonOf(const Reading& reading);

std::size_t measuredCount(const Run& run);

/// How much of the chart was measured: "12 of 18 patches".
std::string coverage(const Run& run);

/// The patches that were not measured.
std::vector<Gap> gaps(const Run& run);

/// A gap for people: "patches 7 to 12 not measured: skipped".
std::string describe(const Gap& gap);

/// Whether any reading has CIELab values.
bool hasLab(const Run& run);

/// X, Y and Z of a reading; none when they are not wanted, or when it has no CIELab values.
std::optional<Xyz> xyzOf(const Run& run, const Reading& reading);

/// The wavelengths of all spectra.
std::set<std::int32_t> wavelengths(const Run& run);

/// The reflectance in percent at a wavelength, if it was measured there.
std::optional<float> reflectance(const Reading& reading, std::int32_t wavelength);

} // namespace spm

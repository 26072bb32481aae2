#pragma once

// What a measuring run gave: the one thing that all output forms are made of.

#include "module/SPM.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace spm {

/// What the CIELab values are for.
inline constexpr std::string_view illuminant = "D65";
inline constexpr std::string_view observer = "10 degree";

/// A measured patch.
struct Reading {
    std::string name;
    /// For illuminant D65 and the 10 degree observer.
    std::optional<SPM_LAB> lab;
    /// Reflectance in percent at each wavelength in nm; empty when it was not measured.
    std::vector<SPM_REFLECTION> spectrum;
};

struct Run {
    /// When it began, in UTC by ISO 8601: "2026-11-23T09:30:00Z".
    std::string started;
    /// The module's file and its version.
    std::string module;
    std::uint32_t version = 0;
    /// What the values come from when they are simulated; empty for an instrument.
    std::string simulation;
    /// How many patches a row has; 0 when spots were measured.
    std::int32_t patchesInRow = 0;
    /// In the order of the measurement.
    std::vector<Reading> readings;
};

/// @throws Error  when there are no readings, or one of them has no values or one that is not finite
void requireValues(const Run& run);

/// @throws Error  when one of the reading's values is not finite
void requireFinite(const Reading& reading);

/// Whether any reading has CIELab values.
bool hasLab(const Run& run);

/// The wavelengths of all spectra.
std::set<std::int32_t> wavelengths(const Run& run);

/// The reflectance in percent at a wavelength, if it was measured there.
std::optional<float> reflectance(const Reading& reading, std::int32_t wavelength);

} // namespace spm

#pragma once

// What a measuring run gave: the one thing that all output forms are made of.

#include "module/SPM.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace host {

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

} // namespace host

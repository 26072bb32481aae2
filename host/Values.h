#pragma once

// A run's values, as the output forms look at them.

#include "host/Run.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string_view>

namespace host {

/// What the CIELab values are for.
inline constexpr std::string_view illuminant = "D65";
inline constexpr std::string_view observer = "10 degree";

/// @throws HostError  when there are no readings, or one of them has no values or one that is not finite
void requireValues(const Run& run);

/// @throws HostError  when one of the reading's values is not finite
void requireFinite(const Reading& reading);

/// Whether any reading has CIELab values.
bool hasLab(const Run& run);

/// The wavelengths of all spectra.
std::set<std::int32_t> wavelengths(const Run& run);

/// The reflectance in percent at a wavelength, if it was measured there.
std::optional<float> reflectance(const Reading& reading, std::int32_t wavelength);

} // namespace host

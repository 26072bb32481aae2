#pragma once

#include "spm/doctor/Finding.h"
#include "spm/formats/Swatch.h"

#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace spm {

/// Looks at everything that measuring needs, from the module's file to the calibration of the instrument. Changes
/// nothing that the module does not change when a host uses it.
std::vector<Finding> examine(const std::filesystem::path& module);

bool isSound(std::span<const Finding> findings);

/// The findings for people, a paragraph each, and a last line that sums up.
std::string formatFindings(std::span<const Finding> findings, ColourDepth depth);

} // namespace spm

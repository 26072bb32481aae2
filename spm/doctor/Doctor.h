#pragma once

#include "spm/doctor/Finding.h"

#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace spm {

/// Checks everything that measuring needs, from the module's file to the calibration of the instrument. Has no side
/// effects except those of the module itself: it may create its registry keys.
std::vector<Finding> examine(const std::filesystem::path& module);

/// Whether no finding is wrong.
bool isReady(std::span<const Finding> findings);

/// A paragraph for each finding, and a last line with the result.
std::string formatFindings(std::span<const Finding> findings, bool inColour);

} // namespace spm

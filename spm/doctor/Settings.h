#pragma once

#include "spm/doctor/Finding.h"

#include <vector>

namespace spm {

/// Checks whether the module can read its settings, and the value of each; also finds stored values that the module
/// ignores.
std::vector<Finding> examineSettings();

/// Whether the settings enable the log file.
bool isLoggingEnabled();

} // namespace spm

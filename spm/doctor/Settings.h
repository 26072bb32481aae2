#pragma once

#include "spm/doctor/Finding.h"

#include <vector>

namespace spm {

/// Looks at the module's settings as the module reads them: at the place where they are stored, then at each.
std::vector<Finding> examineSettings();

/// Whether the settings ask for a log file.
bool isLoggingOn();

} // namespace spm

#pragma once

#include "module/SPM_BASE.h"

#include <memory>

/// Makes the object of the one instrument that this library drives. The instrument's own folder defines it.
[[nodiscard]] std::unique_ptr<SPM_BASE> createDevice();

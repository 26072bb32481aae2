#pragma once

#include "module/SPM_BASE.h"

#include <memory>

/// Creates the object that drives this library's instrument. Defined in the instrument's folder, so that module/
/// depends on no instrument.
[[nodiscard]] std::unique_ptr<SPM_BASE> createDevice();

#pragma once

namespace common {

/// The file names of the module and of the vendor's library on this system.
extern const char* const moduleFileName;
extern const char* const sdkFileName;

} // namespace common

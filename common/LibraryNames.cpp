#include "common/LibraryNames.h"

namespace common {

// The build defines the system's prefix and suffix of libraries; the module has no prefix on any system.
const char* const moduleFileName = "spm_i1pro3" LIBRARY_SUFFIX;
const char* const sdkFileName = LIBRARY_PREFIX "i1Pro364" LIBRARY_SUFFIX;

} // namespace common

#pragma once

namespace common {

/// The file names of the module and of the vendor's library on this system. The build defines the system's prefix and
/// suffix of libraries; the module has no prefix on any system.
inline constexpr const char* moduleFileName = "spm_i1pro3" SPM_LIBRARY_SUFFIX;
inline constexpr const char* sdkFileName = SPM_LIBRARY_PREFIX "i1Pro364" SPM_LIBRARY_SUFFIX;

} // namespace common

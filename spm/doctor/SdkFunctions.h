#pragma once

#include <span>

namespace spm {

/// The names of the functions that the module needs from the SDK library.
extern const std::span<const char* const> sdkFunctions;

} // namespace spm

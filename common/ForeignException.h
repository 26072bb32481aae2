#pragma once

#include <string>

namespace common {

/// Throws an exception as a library built with Visual C++ would. On Windows, where compilers' exceptions differ, this
/// compiler's handlers and destructors don't see it; elsewhere it is a std::runtime_error.
[[noreturn]] void throwForeign(const std::string& what);

} // namespace common

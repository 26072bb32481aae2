#pragma once

// Calls into libraries that may have been built by another compiler.
//
// On Windows, each compiler implements C++ exceptions in its own way. GCC's handlers, catch (...) included, don't catch
// those of Visual C++: an exception thrown by such a library would terminate the process. callForeign converts it to an
// exception of this compiler. Elsewhere all compilers share one implementation, and callForeign is a plain call.

#include <cstdint>
#include <type_traits>

#ifdef __MINGW32__
/// Calls the function in the first argument with up to four more arguments; see windows/ForeignCall.cpp.
extern "C" void callCatchingForeign();
#endif

/// Calls a function of a library. Exceptions of this compiler propagate unchanged.
/// @throws std::runtime_error  if the function throws a C++ exception of Visual C++
template <class... Parameters>
std::int32_t callForeign(std::int32_t (*function)(Parameters...), std::type_identity_t<Parameters>... arguments) {
#ifdef __MINGW32__
    static_assert(sizeof...(Parameters) <= 4 && (std::is_scalar_v<Parameters> && ...));
    static_assert(!(std::is_floating_point_v<Parameters> || ...));
    using Caller = std::int32_t (*)(std::int32_t(*)(Parameters...), Parameters...);
    return reinterpret_cast<Caller>(callCatchingForeign)(function, arguments...);
#else
    return function(arguments...);
#endif
}

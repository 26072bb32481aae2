#pragma once

// Calls into libraries that another compiler may have built.
//
// On Windows, each compiler has C++ exceptions of its own. GCC's handlers, catch (...) included, let Visual C++'s pass:
// one that a library throws would end the process. A call through callForeign turns it into a C++ exception of this
// compiler. Elsewhere all compilers share one kind of exceptions, and the call is a plain one.

#include <cstdint>
#include <type_traits>

#ifdef __MINGW32__
/// Calls the function in its first argument with the up to four others, see windows/ForeignCall.cpp.
extern "C" void callCatchingForeign();
#endif

/// Calls a function of a library.
/// @throws std::runtime_error  in place of a C++ exception of Visual C++; any other exception passes as it is
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

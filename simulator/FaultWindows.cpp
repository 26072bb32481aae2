#include "simulator/Fault.h"

#include <array>
#include <cstdlib>
#include <windows.h>

namespace simulator {

void throwForeign(const std::string& /*what*/) {
    constexpr DWORD visualCppException = 0xE06D7363;
    static int object = 0;
    std::array<ULONG_PTR, 4> arguments{0x19930520, reinterpret_cast<ULONG_PTR>(&object), 0, 0};
    RaiseException(visualCppException, EXCEPTION_NONCONTINUABLE, 4, arguments.data());
    std::abort(); // not reached
}

} // namespace simulator

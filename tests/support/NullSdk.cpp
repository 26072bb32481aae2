// An SDK library whose functions do nothing and succeed, so that only the module's own work is measured or tested.

#include "i1pro3/I1PRO3_SDK.h"

#include <array>
#include <cstdlib>
#include <string_view>

namespace {

int32_t scannedPatches = 0;

template <class... Arguments>
int32_t perform(std::string_view function, Arguments... /*arguments*/) {
    return function == "GetNumberOfAvailableSamples" ? scannedPatches : 0;
}

int32_t perform(std::string_view /*function*/, I1PRO3_DeviceHandle** devices, uint32_t* count) {
    static std::array<I1PRO3_DeviceHandle, 1> list{&list};
    *devices = list.data();
    *count = 1;
    return 0;
}

int32_t perform(std::string_view /*function*/, I1PRO3_DeviceHandle /*device*/, const char* key, const char* value) {
    if (std::string_view(key) == "PatchesPerLine")
        scannedPatches = static_cast<int32_t>(std::strtol(value, nullptr, 10));
    return 0;
}

} // namespace

#define SDK_FUNCTION(name, declaration, ...)                                                                           \
    int32_t I1PRO3_##name declaration {                                                                                \
        return perform(#name, __VA_ARGS__);                                                                            \
    }
#include "simulator/SdkFunctions.inc"
#undef SDK_FUNCTION

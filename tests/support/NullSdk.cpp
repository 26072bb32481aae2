// An SDK library whose functions do nothing and succeed, so that only the module's own work is measured or tested.

#include "i1pro3/I1PRO3_SDK.h"

#include <array>
#include <cstdlib>
#include <string_view>

#define SUCCEEDS(function, ...)                                                                                        \
    int32_t function(__VA_ARGS__) {                                                                                    \
        return 0;                                                                                                      \
    }

SUCCEEDS(I1PRO3_OpenDevice, I1PRO3_DeviceHandle)
SUCCEEDS(I1PRO3_CloseDevice, I1PRO3_DeviceHandle)
SUCCEEDS(I1PRO3_GetConnectionStatus, I1PRO3_DeviceHandle)
SUCCEEDS(I1PRO3_GetOption, I1PRO3_DeviceHandle, const char*, char*, uint32_t*)
SUCCEEDS(I1PRO3_SetGlobalOption, const char*, const char*)
SUCCEEDS(I1PRO3_GetGlobalOption, const char*, char*, uint32_t*)
SUCCEEDS(I1PRO3_GetButtonStatusD, I1PRO3_DeviceHandle)
SUCCEEDS(I1PRO3_Calibrate, I1PRO3_DeviceHandle)
SUCCEEDS(I1PRO3_TriggerMeasurement, I1PRO3_DeviceHandle)
SUCCEEDS(I1PRO3_GetTriStimulus, I1PRO3_DeviceHandle, float*, int32_t)
SUCCEEDS(I1PRO3_GetSpectrum, I1PRO3_DeviceHandle, float*, int32_t)

namespace {

int32_t scannedPatches = 0;

} // namespace

int32_t I1PRO3_GetDevices(I1PRO3_DeviceHandle** devices, uint32_t* count) {
    static std::array<I1PRO3_DeviceHandle, 1> list{&list};
    *devices = list.data();
    *count = 1;
    return 0;
}

int32_t I1PRO3_SetOption(I1PRO3_DeviceHandle /*device*/, const char* key, const char* value) {
    if (std::string_view(key) == "PatchesPerLine")
        scannedPatches = static_cast<int32_t>(std::strtol(value, nullptr, 10));
    return 0;
}

int32_t I1PRO3_GetNumberOfAvailableSamples(I1PRO3_DeviceHandle /*device*/) {
    return scannedPatches;
}

// An SDK library that does nothing and succeeds: what is left of a call is the module's own part.

#include "i1pro3/I1PRO3_SDK.h"

#include <array>
#include <cstdlib>
#include <string_view>

namespace {

int32_t scannedPatches = 0;
int32_t buttonStatus = 0;

} // namespace

int32_t I1PRO3_GetDevices(I1PRO3_DeviceHandle** devices, uint32_t* count) {
    static std::array<I1PRO3_DeviceHandle, 1> list{&list};
    *devices = list.data();
    *count = 1;
    return 0;
}

int32_t I1PRO3_OpenDevice(I1PRO3_DeviceHandle /*device*/) {
    return 0;
}
int32_t I1PRO3_CloseDevice(I1PRO3_DeviceHandle /*device*/) {
    return 0;
}
int32_t I1PRO3_GetConnectionStatus(I1PRO3_DeviceHandle /*device*/) {
    return 0;
}

int32_t I1PRO3_SetOption(I1PRO3_DeviceHandle /*device*/, const char* key, const char* value) {
    if (std::string_view(key) == "PatchesPerLine")
        scannedPatches = static_cast<int32_t>(std::strtol(value, nullptr, 10));
    return 0;
}

int32_t I1PRO3_GetOption(I1PRO3_DeviceHandle /*device*/, const char* /*key*/, char* /*buffer*/, uint32_t* /*size*/) {
    return 0;
}

/// The global option "Button" is what the button's status is.
int32_t I1PRO3_SetGlobalOption(const char* key, const char* value) {
    if (std::string_view(key) == "Button") buttonStatus = static_cast<int32_t>(std::strtol(value, nullptr, 10));
    return 0;
}
int32_t I1PRO3_GetGlobalOption(const char* /*key*/, char* /*buffer*/, uint32_t* /*size*/) {
    return 0;
}
int32_t I1PRO3_GetButtonStatusD(I1PRO3_DeviceHandle /*device*/) {
    return buttonStatus;
}
int32_t I1PRO3_Calibrate(I1PRO3_DeviceHandle /*device*/) {
    return 0;
}
int32_t I1PRO3_TriggerMeasurement(I1PRO3_DeviceHandle /*device*/) {
    return 0;
}
int32_t I1PRO3_GetNumberOfAvailableSamples(I1PRO3_DeviceHandle /*device*/) {
    return scannedPatches;
}
int32_t I1PRO3_GetTriStimulus(I1PRO3_DeviceHandle /*device*/, float* /*values*/, int32_t /*sample*/) {
    return 0;
}
int32_t I1PRO3_GetSpectrum(I1PRO3_DeviceHandle /*device*/, float* /*spectrum*/, int32_t /*sample*/) {
    return 0;
}

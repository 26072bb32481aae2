// The library's fourteen functions.

#include "simulator/SdkCall.h"

using simulator::Function;
using simulator::perform;

int32_t I1PRO3_GetDevices(I1PRO3_DeviceHandle** devices, uint32_t* count) {
    return perform({.function = Function::getDevices, .list = devices, .count = count});
}

int32_t I1PRO3_OpenDevice(I1PRO3_DeviceHandle device) {
    return perform({.function = Function::openDevice, .device = device});
}

int32_t I1PRO3_CloseDevice(I1PRO3_DeviceHandle device) {
    return perform({.function = Function::closeDevice, .device = device});
}

int32_t I1PRO3_GetConnectionStatus(I1PRO3_DeviceHandle device) {
    return perform({.function = Function::getConnectionStatus, .device = device});
}

int32_t I1PRO3_SetOption(I1PRO3_DeviceHandle device, const char* key, const char* value) {
    return perform({.function = Function::setOption, .device = device, .key = key, .value = value});
}

int32_t I1PRO3_GetOption(I1PRO3_DeviceHandle device, const char* key, char* buffer, uint32_t* size) {
    return perform({.function = Function::getOption, .device = device, .key = key, .buffer = buffer, .size = size});
}

int32_t I1PRO3_SetGlobalOption(const char* key, const char* value) {
    return perform({.function = Function::setGlobalOption, .key = key, .value = value});
}

int32_t I1PRO3_GetGlobalOption(const char* key, char* buffer, uint32_t* size) {
    return perform({.function = Function::getGlobalOption, .key = key, .buffer = buffer, .size = size});
}

int32_t I1PRO3_GetButtonStatusD(I1PRO3_DeviceHandle device) {
    return perform({.function = Function::getButtonStatusD, .device = device});
}

int32_t I1PRO3_Calibrate(I1PRO3_DeviceHandle device) {
    return perform({.function = Function::calibrate, .device = device});
}

int32_t I1PRO3_TriggerMeasurement(I1PRO3_DeviceHandle device) {
    return perform({.function = Function::triggerMeasurement, .device = device});
}

int32_t I1PRO3_GetNumberOfAvailableSamples(I1PRO3_DeviceHandle device) {
    return perform({.function = Function::getNumberOfAvailableSamples, .device = device});
}

int32_t I1PRO3_GetTriStimulus(I1PRO3_DeviceHandle device, float* tristimulus, int32_t sample) {
    return perform({.function = Function::getTriStimulus, .device = device, .sample = sample, .values = tristimulus});
}

int32_t I1PRO3_GetSpectrum(I1PRO3_DeviceHandle device, float* spectrum, int32_t sample) {
    return perform({.function = Function::getSpectrum, .device = device, .sample = sample, .values = spectrum});
}

#pragma once

// The fourteen functions, and a call of one of them as it arrives.

#include "i1pro3/I1PRO3_SDK.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace simulator {

enum class Function : std::uint8_t {
    getDevices,
    openDevice,
    closeDevice,
    getConnectionStatus,
    setOption,
    getOption,
    setGlobalOption,
    getGlobalOption,
    getButtonStatusD,
    calibrate,
    triggerMeasurement,
    getNumberOfAvailableSamples,
    getTriStimulus,
    getSpectrum,
};

/// What a function takes. A list stands for the list of devices and its count, a buffer for a text's buffer and size.
enum class Parameter : std::uint8_t { none, device, key, value, sample, list, buffer, tristimulus, spectrum };

struct Signature {
    const char* name;
    std::array<Parameter, 3> parameters;
};

/// The functions' signatures, in the order of Function.
extern const std::array<Signature, 14> signatures;

/// A call as it arrives. A function uses the members for its parameters.
struct SdkCall {
    Function function;
    I1PRO3_DeviceHandle device = nullptr;
    const char* key = nullptr;
    const char* value = nullptr;
    std::int32_t sample = 0;
    I1PRO3_DeviceHandle** list = nullptr;
    std::uint32_t* count = nullptr;
    char* buffer = nullptr;
    std::uint32_t* size = nullptr;
    float* values = nullptr;
};

const Signature& signatureOf(Function function);
/// Null when there is no such function.
const Signature* findSignature(std::string_view name);
bool takes(const Signature& signature, Parameter parameter);

/// How many values a function hands out.
std::size_t valuesOf(Function function);

/// Performs a call. Each library that has the fourteen functions defines it.
std::int32_t perform(const SdkCall& call);

} // namespace simulator

#pragma once

// The fourteen functions, and a call of one of them: with pointers as it arrives, and as values, which the simulation
// and the traces are made of.

#include "i1pro3/I1PRO3_SDK.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace simulator {

/// JSON whose members keep their order.
using Json = nlohmann::ordered_json;

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
bool takes(const Signature& signature, Parameter parameter);

/// How many values a function hands out.
std::size_t valuesOf(Function function);

/// A call's arguments as values.
struct Request {
    std::string text(const char* argument) const;
    /// Of the buffer; 0 when there is none.
    std::uint32_t size() const;
    /// Whether all addresses and texts are there.
    bool isComplete() const;

    Function function;
    /// By name, in the order of the call: a device by its name, a buffer by its size. Addresses are left out, except
    /// that null ones are null.
    Json arguments;
};

/// @param nameOf  gives a device's name
Request requestOf(const SdkCall& call, const std::function<std::string(I1PRO3_DeviceHandle)>& nameOf);

/// What a call leaves in its out-parameters; what is not set stays as it was.
struct Outputs {
    std::optional<std::uint32_t> size{};
    std::optional<std::string> text{};
    /// Whether a NUL follows the text.
    bool isTerminated = true;
    std::vector<float> values{};
    std::optional<std::uint32_t> count{};
    /// The names of the devices in the list.
    std::optional<std::vector<std::string>> devices{};
};

struct Reply {
    std::int32_t result = 0;
    Outputs outputs{};
    /// What the function threw in place of a result.
    std::optional<std::string> exception{};
};

/// A text in JSON: as it is when it is UTF-8, otherwise its bytes as numbers.
Json jsonOf(const std::string& text);

/// Performs a call. Each library that has the fourteen functions defines it.
std::int32_t perform(const SdkCall& call);

} // namespace simulator

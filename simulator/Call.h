#pragma once

// A call of one of the fourteen functions, and its answer.

#include "i1pro3/I1PRO3_SDK.h"
#include "simulator/Json.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

struct Signature {
    const char* name;
    std::array<std::string_view, 4> parameters;
};

/// The functions' signatures, in the order of Function.
extern const std::array<Signature, 14> signatures;

const Signature& signatureOf(Function function);
bool takes(Function function, std::string_view parameter);
/// How many values a function hands out.
std::size_t numberOfValues(Function function);
/// The function that a JSON text names.
/// @throws Json::exception
Function functionNamed(const Json& json);
Function functionNamed(const Json& place, const std::string& name);

struct Call {
    /// An argument as a text; a device by its name.
    std::string text(const char* argument) const;
    /// Whether an argument is this text or number; "null" for a null address.
    bool hasArgument(const std::string& value) const;
    /// How many bytes a text may have, its NUL included; 0 without a buffer.
    std::uint32_t room() const;
    /// The name of an argument that is null; null when there is none.
    const char* nullArgument() const;
    /// As messages show it: the function and its arguments.
    std::string shown() const;

    Function function{};
    /// By name, in the order of the call: a device by its name, a buffer by its size. Addresses are left out, except
    /// that null ones are null.
    Json arguments = Json::object();

    // Where the host wants the outputs, if this is a host's call.
    I1PRO3_DeviceHandle** list = nullptr;
    std::uint32_t* count = nullptr;
    char* buffer = nullptr;
    std::uint32_t* size = nullptr;
    float* values = nullptr;
    /// Makes the host's call to another library's function, at this address.
    std::function<std::int32_t(void*)> passOn{};
};

/// What "LastErrorText" and "LastErrorNumber" say of a failure.
struct ErrorReport {
    std::string text;
    std::string number;
};

/// How a call ends. What is not set stays as it was.
struct Answer {
    std::int32_t result = 0;
    std::optional<std::uint32_t> count{};
    /// The names of the devices in the list.
    std::optional<std::vector<std::string>> devices{};
    std::optional<std::uint32_t> size{};
    std::optional<std::string> text{};
    /// Whether a NUL follows the text.
    bool isTerminated = true;
    std::vector<float> values{};
    /// What the function throws in place of a result.
    std::optional<std::string> exception{};
    /// Whether it throws as a library of Visual C++ does.
    bool isForeign = false;
    std::optional<ErrorReport> error{};
};

/// Writes an answer's outputs, all but the list of devices, where the host wants them; a text is cut to the buffer's
/// size.
void handOut(const Answer& answer, const Call& call);

/// The device's name in calls; "unknown" when it is none. Each library that has the fourteen functions defines it ...
std::string nameOf(I1PRO3_DeviceHandle device);

/// ... and this, which performs a host's call.
std::int32_t perform(const Call& call);

} // namespace simulator

#pragma once

// A call of one of the SDK library's fourteen functions, and the answer to it.

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
bool hasParameter(Function function, std::string_view parameter);
/// The number of floats that a function writes to its out-parameter "values".
std::size_t numberOfValues(Function function);

/// The function named by a JSON string.
/// @throws Json::exception  if there is no such function
Function functionNamed(const Json& json);
/// @param place  the JSON value that the error message points to
Function functionNamed(const Json& place, const std::string& name);

struct Call {
    /// The string argument of this name; for a device, the device's name.
    std::string text(const char* argument) const;
    /// Whether any argument has this value; "null" stands for a null pointer.
    bool hasArgument(const std::string& value) const;
    /// The size of the text buffer in bytes; 0 if there is none.
    std::uint32_t bufferSize() const;
    /// The name of the first argument that is null; null if none is.
    const char* nullArgument() const;
    /// The function and its arguments, for messages.
    std::string describe() const;

    Function function{};
    /// The arguments by name, in the order of the call: devices by name, buffers by size. Pointers are omitted unless
    /// they are null.
    Json arguments = Json::object();

    // The host's out-parameters; null in a call that was read from a trace.
    I1PRO3_DeviceHandle** list = nullptr;
    std::uint32_t* count = nullptr;
    char* buffer = nullptr;
    std::uint32_t* size = nullptr;
    float* values = nullptr;
    /// Calls the function at this address with the host's arguments.
    std::function<std::int32_t(void*)> forward{};
};

/// The values of "LastErrorText" and "LastErrorNumber" after a failure.
struct ErrorReport {
    std::string text;
    std::string number;
};

/// The result and outputs of a call. An output that isn't set leaves the host's variable unchanged.
struct Answer {
    std::int32_t result = 0;
    std::optional<std::uint32_t> count{};
    /// The names of the devices in the list.
    std::optional<std::vector<std::string>> devices{};
    std::optional<std::uint32_t> size{};
    std::optional<std::string> text{};
    /// Whether the text ends with a NUL.
    bool isTerminated = true;
    std::vector<float> values{};
    /// The message of the exception that the function throws instead of returning.
    std::optional<std::string> exception{};
    /// Whether the exception is one of Visual C++'s, see common::throwForeign.
    bool isForeign = false;
    std::optional<ErrorReport> error{};
};

/// Writes an answer's outputs, except the list of devices, to the call's out-parameters. Truncates the text to the
/// buffer's size.
void writeOutputs(const Answer& answer, const Call& call);

// Functions.cpp calls these two; the simulated SDK library and the recorder each define them.

/// The device's name in Call::arguments; "unknown" if the handle is invalid.
std::string nameOf(I1PRO3_DeviceHandle device);

/// Executes a host's call and returns the function's result.
std::int32_t perform(const Call& call);

} // namespace simulator

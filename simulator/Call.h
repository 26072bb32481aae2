#pragma once

// A call of one of the SDK library's fourteen functions, and the answer to it.

#include "i1pro3/I1PRO3_SDK.h"

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// The functions, named as in the SDK without its prefix.
enum class Function : std::uint8_t {
#define SDK_FUNCTION(name, ...) name,
#include "simulator/SdkFunctions.inc"
#undef SDK_FUNCTION
};

/// The parameters, named as in the SDK.
enum class Parameter : std::uint8_t { device, key, value, list, count, buffer, size, values, sample };

constexpr std::size_t numberOfParameters = 9;

struct Signature {
    const char* name;
    /// In the order of the call.
    std::span<const Parameter> parameters;
};

/// The functions' signatures, in the order of Function.
extern const std::span<const Signature> signatures;

const Signature& signatureOf(Function function);
const char* nameOf(Parameter parameter);
bool hasParameter(Function function, Parameter parameter);
/// The number of floats that a function writes to its out-parameter "values".
std::size_t numberOfValues(Function function);

/// The arguments of a call. Those that the function doesn't have, and null pointers, have their default values.
struct Call {
    bool isNull(Parameter parameter) const { return nulls[static_cast<std::size_t>(parameter)]; }
    void setNull(Parameter parameter) { nulls.set(static_cast<std::size_t>(parameter)); }
    /// The first argument that is a null pointer, if any.
    std::optional<Parameter> nullArgument() const;
    /// An argument as a text, "null" for a null pointer; nullopt if it is a pointer to an output.
    std::optional<std::string> textOf(Parameter parameter) const;
    /// Whether any argument is this text.
    bool hasArgument(const std::string& text) const;
    /// The size of the text buffer in bytes; 0 if there is none.
    std::uint32_t bufferSize() const;

    bool operator==(const Call&) const = default;

    Function function{};
    /// The device's name.
    std::string device{};
    std::string key{};
    std::string value{};
    /// What the size variable contains.
    std::uint32_t size = 0;
    std::int32_t sample = 0;
    std::bitset<numberOfParameters> nulls{};
};

/// The host's out-parameters; null if the host passed a null pointer or the function doesn't have the parameter.
struct Outputs {
    I1PRO3_DeviceHandle** list = nullptr;
    std::uint32_t* count = nullptr;
    char* buffer = nullptr;
    std::uint32_t* size = nullptr;
    float* values = nullptr;
};

/// Calls the function at this address with the host's arguments.
using Forward = std::function<std::int32_t(void* address)>;

/// The values of "LastErrorText" and "LastErrorNumber".
struct LastError {
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
    /// Whether the exception is one of Visual C++'s, see throwForeign.
    bool isForeign = false;
    /// After a failure.
    std::optional<LastError> error{};
};

/// Writes an answer's outputs, except the list of devices. Truncates the text to the buffer's size.
void writeOutputs(const Answer& answer, const Outputs& outputs);

// Functions.cpp calls these two; the simulated SDK library and the recorder each define them.

/// The name for Call::device; "unknown" if the handle is invalid.
std::string nameOf(I1PRO3_DeviceHandle device);

/// Executes a host's call and returns the function's result.
std::int32_t perform(const Call& call, const Outputs& outputs, const Forward& forward);

} // namespace simulator

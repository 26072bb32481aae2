#pragma once

// A call of one of the SDK library's fourteen functions, and the answer to it.

#include "i1pro3/I1PRO3_SDK.h"

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
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

struct Signature {
    const char* name;
    /// In the order of the call.
    std::span<const Parameter> parameters;
};

/// The functions' signatures, in the order of Function.
extern const std::span<const Signature> signatures;

const Signature& signatureOf(Function function);
const char* nameOf(Parameter parameter);
/// The number of floats that a function writes to its out-parameter "values".
std::size_t numberOfValues(Function function);

/// The arguments of a call. Those that the function doesn't have, and null pointers, have their default values.
struct Call {
    bool isNull(Parameter parameter) const { return nulls[static_cast<std::size_t>(parameter)]; }
    void setNull(Parameter parameter) { nulls.set(static_cast<std::size_t>(parameter)); }
    /// An argument as a text, "null" for a null pointer; nullopt if it is a pointer to an output.
    std::optional<std::string> textOf(Parameter parameter) const;
    /// The size of the text buffer in bytes; 0 if there is none.
    std::uint32_t bufferSize() const { return isNull(Parameter::buffer) ? 0 : size; }

    bool operator==(const Call&) const = default;

    Function function{};
    /// The device's name.
    std::string device{};
    std::string key{};
    std::string value{};
    /// What the size variable contains.
    std::uint32_t size = 0;
    std::int32_t sample = 0;
    std::bitset<9> nulls{};
};

/// Passes the member that holds an argument to a visitor; a pointer to an output has none.
template <class AnyCall, class Visitor>
void visitArgument(AnyCall& call, Parameter parameter, Visitor visit) {
    if (parameter == Parameter::device) visit(call.device);
    if (parameter == Parameter::key) visit(call.key);
    if (parameter == Parameter::value) visit(call.value);
    if (parameter == Parameter::size) visit(call.size);
    if (parameter == Parameter::sample) visit(call.sample);
}

/// The host's out-parameters; null if the host passed a null pointer or the function doesn't have the parameter.
struct Outputs {
    I1PRO3_DeviceHandle** list = nullptr;
    std::uint32_t* count = nullptr;
    char* buffer = nullptr;
    std::uint32_t* size = nullptr;
    float* values = nullptr;
};

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

/// Returns a text in the call's buffer. If the buffer is too small, the answer is a failure with the required size.
Answer textAnswer(const Call& call, const std::string& text);

/// Writes an answer's outputs, except the list of devices. Truncates the text to the buffer's size.
void writeOutputs(const Answer& answer, const Outputs& outputs);

/// A failure of the simulated library or of the recorder itself; what() is its "LastErrorText".
class SdkError : public std::runtime_error {
public:
    /// The functions' results when they fail.
    enum Code : std::int32_t {
        invalidDevice = 1,
        deviceNotOpen = 2,
        unknownOption = 3,
        invalidValue = 4,
        bufferTooSmall = 5,
        invalidArgument = 6,
        noSample = 7,
        unplugged = 8,
        invalidSetup = 9,
        replayMismatch = 10,
        notCalibrated = I1PRO3_NOT_CALIBRATED,
    };

    SdkError(Code errorCode, const std::string& text) : std::runtime_error(text), code(errorCode) {}

    /// The answer to a call that fails with this error. I1PRO3_GetNumberOfAvailableSamples, whose positive results are
    /// counts, returns the negated code.
    Answer answer(const Call& call) const;

    /// The answer to any call while this error persists: calls that ask for the last error get this one, all others
    /// fail with it.
    Answer persistentAnswer(const Call& call) const;

private:
    Code code;
};

} // namespace simulator

#pragma once

// What answers calls, and how failures are told: the result is the error's number, and "LastErrorText" says the rest.

#include "simulator/Request.h"

#include <map>
#include <stdexcept>

namespace simulator {

/// What the functions answer when they fail. I1PRO3_GetNumberOfAvailableSamples answers the negative number.
enum class ErrorCode : std::int32_t {
    invalidDevice = 1,
    deviceNotOpen = 2,
    unknownOption = 3,
    invalidValue = 4,
    bufferTooSmall = 5,
    invalidArgument = 6,
    noSample = 7,
    unplugged = 8,
    invalidSetup = 9,
    departure = 10,
    notCalibrated = 13,
};

/// A failure of a function, with its text for "LastErrorText".
class SdkError : public std::runtime_error {
public:
    SdkError(ErrorCode errorCode, const std::string& text, Outputs left = {})
        : std::runtime_error(text), code(errorCode), outputs(std::move(left)) {}

    const ErrorCode code;
    /// What the function leaves in its out-parameters all the same.
    const Outputs outputs;
};

class Backend {
public:
    virtual ~Backend() = default;
    /// @throws SdkError
    virtual Reply answer(const Request& request) = 0;
};

/// What is to be told of the last failure.
class LastError {
public:
    /// What a backend answers, its failures included.
    Reply answerOf(Backend& backend, const Request& request);
    /// Keeps what a call failed with. That asking for the last failure failed, too, is not kept.
    void keep(const Request& request, const std::string& newText, const std::string& newNumber);
    void set(const std::string& newText, const std::string& newNumber);
    void clear() { set("", ""); }
    /// Answers I1PRO3_GetGlobalOption.
    /// @throws SdkError
    Reply read(const Request& request) const;

private:
    std::string text;
    std::string number;
};

/// Hands out a text; where it does not fit, only the size that it needs.
/// @throws SdkError
Reply textReply(const Request& request, const std::string& text);

/// Fails in each call, and tells why when it is asked.
class Failure : public Backend {
public:
    /// The failure is told from the first call on.
    Failure(ErrorCode errorCode, std::string errorText, LastError& common);

    Reply answer(const Request& request) override;

private:
    ErrorCode code;
    std::string text;
    LastError& lastError;
};

/// The handles of devices that are no real ones. A name has the same handle for as long as the library is loaded.
class Devices {
public:
    /// "unknown" for what is no handle.
    std::string nameOf(I1PRO3_DeviceHandle handle) const;
    /// Writes outputs where a call wants them; texts are cut to the buffer's size.
    void handOut(const Outputs& outputs, const SdkCall& call);

private:
    std::map<std::string, char> handles;
    std::map<std::vector<std::string>, std::vector<I1PRO3_DeviceHandle>> lists;
};

} // namespace simulator

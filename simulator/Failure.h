#pragma once

#include "simulator/Call.h"

#include <stdexcept>

namespace simulator {

/// The functions' results when they fail. I1PRO3_GetNumberOfAvailableSamples, whose positive results are counts,
/// returns the negated code.
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
    replayMismatch = 10,
    notCalibrated = I1PRO3_NOT_CALIBRATED,
};

/// A failed call; what() is its "LastErrorText".
class SdkError : public std::runtime_error {
public:
    SdkError(ErrorCode errorCode, const std::string& text) : std::runtime_error(text), code(errorCode) {}

    const ErrorCode code;
};

/// The answer to a call that fails with this code and "LastErrorText".
Answer failureOf(const Call& call, ErrorCode code, const std::string& text);

/// Returns a text in the call's buffer. If the buffer is too small, the answer is a failure with the required size.
Answer textAnswer(const Call& call, const std::string& text);

/// A failure that every call reports, except those that ask for the last error: they get its text and number.
class PermanentFailure {
public:
    PermanentFailure(ErrorCode errorCode, std::string errorText) : code(errorCode), text(std::move(errorText)) {}

    Answer answer(const Call& call) const;

private:
    ErrorCode code;
    std::string text;
};

} // namespace simulator

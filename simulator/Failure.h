#pragma once

#include "simulator/Call.h"

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
    notCalibrated = I1PRO3_NOT_CALIBRATED,
};

/// A failure of a function, with its text for "LastErrorText".
class SdkError : public std::runtime_error {
public:
    SdkError(ErrorCode errorCode, const std::string& text) : std::runtime_error(text), code(errorCode) {}

    const ErrorCode code;
};

Answer failureOf(const Call& call, ErrorCode code, const std::string& text);

/// Hands out a text; where it does not fit, only the size that it needs.
Answer textAnswer(const Call& call, const std::string& text);

/// Fails in each call, and tells why when it is asked.
class LastingFailure {
public:
    LastingFailure(ErrorCode errorCode, std::string errorText) : code(errorCode), text(std::move(errorText)) {}

    Answer answer(const Call& call) const;

private:
    ErrorCode code;
    std::string text;
};

} // namespace simulator

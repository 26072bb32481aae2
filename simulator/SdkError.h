#pragma once

#include "simulator/Call.h"

#include <stdexcept>

namespace simulator {

/// A failure of the simulated library or of the recorder itself; what() is its "LastErrorText".
class SdkError : public std::runtime_error {
public:
    /// The functions' results when they fail.
    enum class Code : std::int32_t {
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

/// Returns a text in the call's buffer. If the buffer is too small, the answer is a failure with the required size.
Answer textAnswer(const Call& call, const std::string& text);

} // namespace simulator

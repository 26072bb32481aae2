#pragma once

#include "simulator/Call.h"

namespace simulator {

/// An answer in place of the simulated one, and the calls that it is for.
struct Fault {
    /// Calls of this function, with this argument; empty: of any, with any ...
    std::optional<Function> function{};
    std::string key{};
    /// ... from this of them on, and so many; none: all.
    std::uint32_t call = 1;
    std::optional<std::uint32_t> times = 1;

    /// For I1PRO3_GetDevices, the size is the count. No NUL follows the text.
    Answer answer{};
    /// What "LastErrorText" and "LastErrorNumber" say when the result is not 0.
    std::optional<std::string> errorText{};
    std::optional<std::string> errorNumber{};

    /// How many of these calls were made.
    std::uint32_t seen = 0;
};

/// The answer of the first fault that is for the call; none when no fault is.
std::optional<Answer> answerOf(std::vector<Fault>& faults, const Call& call);

} // namespace simulator

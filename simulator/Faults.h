#pragma once

#include "simulator/Call.h"

namespace simulator {

/// Replaces the simulated answer to certain calls.
struct Fault {
    /// The function and an argument that a call must have to match; unset and empty match every call.
    std::optional<Function> function{};
    std::string key{};
    /// The first matching call to fail, counted from 1, and how many fail; without a value, all later ones.
    std::uint32_t call = 1;
    std::optional<std::uint32_t> times = 1;

    /// For I1PRO3_GetDevices, the size is the device count. The text is not NUL-terminated.
    Answer answer{};
    /// "LastErrorText" and "LastErrorNumber" if the result is not 0.
    std::optional<std::string> errorText{};
    std::optional<std::string> errorNumber{};

    /// The number of matching calls so far.
    std::uint32_t matches = 0;
};

/// The answer of the first fault that applies to the call, if any. Counts the call for every fault that it matches.
std::optional<Answer> answerOf(std::vector<Fault>& faults, const Call& call);

} // namespace simulator

#pragma once

#include "simulator/Call.h"

namespace simulator {

/// An event at certain calls: the instruments are unplugged or plugged in again, or another answer replaces the
/// simulated one.
struct Fault {
    /// Counts the call if it matches.
    /// @return whether the fault applies to it
    bool countAndTest(const Call& made);

    /// The answer to a call, without the outputs that the call's function doesn't have.
    Answer answerTo(const Call& made) const;

    /// The function and an argument that a call must have to match; unset and empty match every call.
    std::optional<Function> function{};
    std::string key{};
    /// The first matching call to which it applies, counted from 1, and to how many; without a value, to all later
    /// ones.
    std::uint32_t call = 1;
    std::optional<std::uint32_t> times = 1;

    /// Unplugs the instruments (true) or plugs them in again (false), and leaves the answer to them.
    std::optional<bool> unplug{};
    std::int32_t result = 0;
    /// "LastErrorText" and "LastErrorNumber" if the result is not 0.
    std::optional<std::string> text{};
    std::optional<std::string> number{};
    /// Written to the text buffer without a NUL.
    std::optional<std::string> output{};
    /// For I1PRO3_GetDevices, the device count.
    std::optional<std::uint32_t> size{};
    std::optional<std::string> exception{};
    bool foreign = false;

    /// The number of matching calls so far.
    std::uint32_t matches = 0;
};

/// Throws an exception as a library built with Visual C++ would. On Windows, where compilers' exceptions differ, this
/// compiler's handlers and destructors don't see it; elsewhere it is a std::runtime_error.
[[noreturn]] void throwForeign(const std::string& what);

} // namespace simulator

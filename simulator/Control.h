#pragma once

// How a test steers the simulated instruments in its own process: what was called, and what is to be answered.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace simulator {

/// A call of one of the fourteen functions.
struct Call {
    /// With its prefix I1PRO3_.
    std::string function;
    /// In the order of the call: a device by its serial number, a buffer by its size, "null" for a null address; other
    /// addresses are left out.
    std::vector<std::string> arguments;
};

/// An answer in place of the simulator's own.
struct Answer {
    /// Which calls it is for: of this function (empty: of any), with this argument (empty: with any) ...
    std::string function{};
    std::string argument{};
    /// ... from the n-th of those on, counted from 1 when the answer is set ...
    std::uint32_t position = 1;
    /// ... and this often; 0 means for good.
    std::uint32_t times = 1;

    std::int32_t result = 0;
    /// What "LastErrorText" and "LastErrorNumber" say when the result is not 0. Default: that it is simulated, and the
    /// result.
    std::optional<std::string> errorText{};
    std::optional<std::string> errorNumber{};
    /// For the functions that read a text: these bytes, without a NUL and cut to the buffer's size, in the buffer ...
    std::optional<std::string> output{};
    /// ... and this number in the size variable. For I1PRO3_GetDevices: this count, without a list.
    std::optional<std::uint32_t> outputSize{};
    /// Throws a std::runtime_error in place of any answer.
    bool throws = false;
};

class Control {
public:
    virtual ~Control() = default;

    /// Puts everything back to how it was when the library was loaded. Devices are no longer open.
    virtual void reset() = 0;

    /// The calls since somebody first asked for this control.
    virtual std::vector<Call> calls() const = 0;
    virtual void clearCalls() = 0;

    /// Adds an answer. Of several that a call matches, the first that was added holds.
    virtual void answer(const Answer& answer) = 0;
    virtual void clearAnswers() = 0;

    /// Applies a script, a JSON text as docs/simulator.md tells of: what it names is set, its faults are added to the
    /// answers, and all else stays as it is. When it names other instruments than before, all are new ones. A serial
    /// number keeps its handle.
    /// @throws ScriptError
    virtual void use(const std::string& script) = 0;
};

} // namespace simulator

extern "C" {

/// The control of the simulated instruments in this process; lives as long as the library.
simulator::Control* I1PRO3_SimulatorControl(void);

/// Tells that this library is a simulation, and of what; the text stays until the next call of one of its functions.
/// The vendor's library has no such function. The recorder has it, and tells what the library behind it tells: null
/// when that is no simulation.
const char* I1PRO3_SimulatorDescription(void);
}

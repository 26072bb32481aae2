#pragma once

#include "simulator/I1PRO3_Simulator.h"
#include "spm/Module.h"
#include "tests/support/Support.h"

#include <ios>
#include <string>
#include <vector>

/// The simulated SDK library that a loaded module runs on, and the trace of the calls to it. It must not outlive the
/// library.
class SimulatedSdk {
public:
    explicit SimulatedSdk(const spm::Module& module);
    SimulatedSdk(const SimulatedSdk&) = delete;
    SimulatedSdk& operator=(const SimulatedSdk&) = delete;
    ~SimulatedSdk();

    /// Applies a script: what it names is set, its faults take the place of all earlier ones, all else stays as it is.
    /// @throws std::runtime_error  when the script is wrong
    void use(const std::string& script);

    /// The calls since the last time, such as "SetOption SIM1 MeasurementMode ReflectanceSpot".
    std::vector<std::string> takeCalls();

private:
    decltype(I1PRO3_SimulatorUse)* const applyScript;
    TempFolder folder;
    std::filesystem::path trace = folder / "calls.jsonl";
    std::streamoff taken = 0;
};

#pragma once

#include "simulator/Call.h"
#include "simulator/I1PRO3_Simulator.h"
#include "spm/Module.h"
#include "tests/support/Support.h"

#include <string>
#include <vector>

/// Controls the simulated SDK library of a loaded module and reads the trace of its calls. Must not outlive the module.
class SimulatedSdk {
public:
    explicit SimulatedSdk(const spm::Module& module);
    SimulatedSdk(const SimulatedSdk&) = delete;
    SimulatedSdk& operator=(const SimulatedSdk&) = delete;
    ~SimulatedSdk();

    /// Applies a script. Its faults replace all earlier ones; what the script doesn't mention stays unchanged.
    /// @throws std::runtime_error  if the script is invalid
    void use(const std::string& script);

    /// Returns the calls since the last takeCalls, such as "SetOption SIM1 MeasurementMode ReflectanceSpot".
    std::vector<std::string> takeCalls();

private:
    static constexpr const char* endTrace = R"({"trace": null})";

    void beginTrace();

    decltype(I1PRO3_SimulatorUse)* const applyScript;
    TempFolder folder;
    std::filesystem::path trace = folder / "calls.jsonl";
};

/// A call without its outputs, such as "SetOption SIM1 MeasurementMode ReflectanceSpot".
std::string wordsOf(const simulator::Call& call);

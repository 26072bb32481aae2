#pragma once

#include "simulator/Instruments.h"
#include "simulator/Replay.h"

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace simulator {

/// The state of the simulated SDK library: applies scripts, and answers each call by a fault, a replay or the simulated
/// instruments. Its functions can be called from any thread.
class Simulator {
public:
    static Simulator& instance();

    /// Implements I1PRO3_SimulatorUse.
    const char* use(const char* text);
    /// Implements I1PRO3_SimulatorDescription.
    const char* describe() const;
    std::string nameOf(I1PRO3_DeviceHandle device) const;
    /// Answers a call and writes its outputs. Leaves it to the caller to throw the answer's exception.
    Answer perform(const Call& call, const Outputs& outputs);

private:
    Simulator() { use(nullptr); }
    void reset();
    void activate(Script next);
    void simulateLatency(Function function) const;
    Answer answerTo(const Call& call);
    std::optional<Answer> applyFaults(const Call& call);
    I1PRO3_DeviceHandle* handlesOf(const std::vector<std::string>& names);

    mutable std::mutex mutex;
    /// The error message of the last call of use; empty if it succeeded.
    std::string scriptError;
    /// Answers all calls while the script or trace named by the environment has an error.
    std::optional<SdkError> failure;
    std::string description;
    Script script;
    std::vector<Fault> faults;
    std::optional<Replay> replay;
    Instruments instruments;
    std::unique_ptr<Trace> trace;
    /// By device name. The address of the value is the device's handle, valid until the library is unloaded.
    std::map<std::string, char> handles;
    /// The lists returned by I1PRO3_GetDevices, valid until the library is unloaded.
    std::map<std::vector<std::string>, std::vector<I1PRO3_DeviceHandle>> lists;
};

} // namespace simulator

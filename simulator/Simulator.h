#pragma once

#include "simulator/Instruments.h"
#include "simulator/Replay.h"

#include <memory>
#include <mutex>

namespace simulator {

/// What stands behind the simulated library's functions: the instruments, and what a script makes of each call.
class Simulator {
public:
    static Simulator& instance();

    const char* use(const char* text);
    const char* describe() const;
    std::string nameOf(I1PRO3_DeviceHandle device) const;
    /// Answers a call, and hands out the outputs; the exception is the caller's to throw.
    Answer perform(const Call& call);

private:
    Simulator() { use(nullptr); }
    void start();
    void change(Script next);
    void wait(Function function) const;
    Answer answerTo(const Call& call);
    void countToUnplug(Function function);
    I1PRO3_DeviceHandle* listOf(const std::vector<std::string>& names);

    mutable std::mutex mutex;
    /// What was wrong with the last script that was used.
    std::string scriptError;
    /// What answers when the environment's script or trace is wrong.
    std::optional<LastingFailure> failure;
    std::string description;
    Script script;
    /// Calls until the instruments are gone.
    std::optional<Unplug> unplug;
    std::vector<Fault> faults;
    std::optional<Replay> replay;
    Instruments instruments;
    std::unique_ptr<Trace> trace;
    /// By name. A device has the same handle for as long as the library is loaded.
    std::map<std::string, char> handles;
    std::map<std::vector<std::string>, std::vector<I1PRO3_DeviceHandle>> lists;
};

} // namespace simulator

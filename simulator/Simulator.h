#pragma once

#include "i1pro3/I1PRO3_SDK.h"
#include "simulator/Control.h"
#include "simulator/Instrument.h"

#include <functional>
#include <memory>
#include <mutex>

namespace simulator {

/// The library behind the fourteen functions: the instruments, the last error, the calls made and the answers set.
class Simulator : public Control {
public:
    static Simulator& instance();

    void reset() override;
    std::vector<Call> calls() const override;
    void clearCalls() override;
    void answer(const Answer& answer) override;
    void clearAnswers() override;
    void use(const std::string& text) override;

    /// Runs a call: records it, gives the answer that is set for it, or does the work.
    /// @param work         what the function does; gives its result
    /// @param writeOutput  takes an answer's output, for the functions that have one
    std::int32_t run(const Call& call, const std::function<std::int32_t()>& work,
                     const std::function<void(const Answer&)>& writeOutput = {});

    /// The serial number of a device, as calls are recorded.
    std::string nameOf(I1PRO3_DeviceHandle handle) const;

    // What work may use.

    /// @throws SdkError  when the script that the environment names is wrong
    std::vector<I1PRO3_DeviceHandle>& deviceList();
    Instrument& instrument(I1PRO3_DeviceHandle handle);
    std::string globalOption(const std::string& key) const;
    void resetAll(const std::string& key, const std::string& value);
    const Weights& weights() const { return d65TenDegree; }

private:
    struct PendingAnswer {
        Answer answer;
        std::uint32_t seen = 0;
    };

    Simulator() { start(); }
    void start();
    void change(Script next);
    std::chrono::milliseconds latencyOf(const Call& call) const;
    void countToUnplug(const Call& call);
    bool isUnplugged() const;
    const Answer* findAnswer(const Call& call);
    std::int32_t fail(const Call& call, std::int32_t result, const std::string& text, const std::string& number);

    mutable std::mutex mutex;
    const Weights d65TenDegree = parseWeights(d65TenDegreeCsv);
    Script script;
    /// What is wrong with the script that the environment names; empty when nothing is.
    std::string scriptFailure;
    std::uint32_t callsToUnplug = 0;
    std::vector<std::unique_ptr<Instrument>> instruments;
    std::vector<I1PRO3_DeviceHandle> handles;
    std::vector<Call> recorded;
    std::vector<PendingAnswer> answers;
    std::string lastErrorText;
    std::string lastErrorNumber;
};

} // namespace simulator

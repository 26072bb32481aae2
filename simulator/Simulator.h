#pragma once

#include "simulator/Control.h"
#include "simulator/Model.h"
#include "simulator/Trace.h"

#include <memory>
#include <mutex>

namespace simulator {

/// The library behind the fourteen functions: what a script and a test's control make of each call.
class Simulator : public Control {
public:
    static Simulator& instance();

    void reset() override;
    std::vector<Call> calls() const override;
    void clearCalls() override;
    void answer(const Answer& answer) override;
    void clearAnswers() override;
    void use(const std::string& text) override;

    /// From here on, calls are kept.
    void watch();
    const char* describe();
    std::int32_t perform(const SdkCall& call);

private:
    struct PendingAnswer {
        Answer answer;
        std::uint32_t seen = 0;
    };

    Simulator() { start(); }
    void start();
    void change(Script next);
    void wait(Function function) const;
    Reply answerTo(const Request& request);
    void countToUnplug(const std::string& function);
    const Answer* findAnswer(const Call& call);
    Reply give(const Answer& answer, const Request& request);

    mutable std::mutex mutex;
    Script script;
    std::string description;
    /// What is still to come: at zero calls, the instruments are gone.
    std::optional<Unplug> unplug;
    Devices devices;
    LastError lastError;
    Model model{lastError};
    /// What answers in place of the model: a replay, or the failure that a wrong script is.
    std::unique_ptr<Backend> substitute;
    std::unique_ptr<Trace> trace;
    bool isWatched = false;
    std::vector<Call> recorded;
    std::vector<PendingAnswer> answers;
};

} // namespace simulator

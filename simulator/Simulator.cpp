// The simulated SDK library.

#include "common/Environment.h"
#include "simulator/I1PRO3_Simulator.h"
#include "simulator/Instrument.h"
#include "simulator/Library.h"
#include "version.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>

namespace simulator {

namespace {

void requireNoNullArgument(const Call& call) {
    for (const Parameter parameter : signatureOf(call.function).parameters) {
        if (!call.isNull(parameter)) continue;
        throw SdkError(parameter == Parameter::device ? SdkError::invalidDevice : SdkError::invalidArgument,
                       std::string("The argument \"") + nameOf(parameter) + "\" is null");
    }
}

/// The simulated instruments and the SDK library's global options.
class Instruments {
public:
    /// @param sharedScript  must outlive the instruments
    explicit Instruments(const Script& sharedScript) : script(sharedScript) {}

    /// Replaces all instruments by those of the script.
    void attach() {
        instruments.clear();
        for (const std::string& serial : script.instruments) {
            const auto index = static_cast<std::uint32_t>(instruments.size());
            instruments.try_emplace(serial, serial, index, script);
        }
        isUnplugged = false;
    }

    /// Unplugs all instruments, which lose their connection and calibration, or plugs them in again.
    void setUnplugged(bool areUnplugged) {
        isUnplugged = areUnplugged;
        for (auto& [serial, instrument] : instruments) {
            instrument.close();
        }
    }

    /// @throws SdkError
    Answer answer(const Call& call) {
        requireNoNullArgument(call);
        switch (call.function) {
        case Function::GetDevices:
            return listDevices();
        case Function::GetGlobalOption:
            return globalOption(call);
        case Function::SetGlobalOption:
            return setGlobalOption(call);
        default:
            return instrumentOf(call).answer(call);
        }
    }

    /// Lets the simulated user press the button again if the call is a measurement or a calibration. To be called for
    /// every call, including those that a fault answers: the user acts whether the call succeeds or not.
    void rearmButton(const Call& call) {
        if (call.function != Function::Calibrate && call.function != Function::TriggerMeasurement) return;
        const auto found = instruments.find(call.device);
        if (found != instruments.end()) found->second.rearmButton();
    }

    /// Stores the error of a failed call as the last error. Failures of I1PRO3_GetGlobalOption, which reads the last
    /// error, are not stored.
    void storeError(const Call& call, const Answer& answer) {
        if (answer.error && call.function != Function::GetGlobalOption) lastError = *answer.error;
    }

    void clearError() { lastError = {}; }

private:
    Instrument& instrumentOf(const Call& call) {
        const auto found = instruments.find(call.device);
        if (found == instruments.end()) throw SdkError(SdkError::invalidDevice, "There is no such device");
        if (isUnplugged) throw SdkError(SdkError::unplugged, "The device " + call.device + " was unplugged");
        return found->second;
    }

    Answer listDevices() const {
        const std::vector<std::string> names = isUnplugged ? std::vector<std::string>() : script.instruments;
        return {.count = static_cast<std::uint32_t>(names.size()), .devices = names};
    }

    Answer globalOption(const Call& call) const {
        if (call.key == "SDKVersion") return textAnswer(call, "simulated i1Pro 3 SDK " SPM_VERSION_TEXT);
        if (call.key == "LastErrorText") return textAnswer(call, lastError.text);
        if (call.key == "LastErrorNumber") return textAnswer(call, lastError.number);
        throw SdkError(SdkError::unknownOption, "There is no global option \"" + call.key + '"');
    }

    Answer setGlobalOption(const Call& call) {
        if (call.key != "Reset" || call.value != "All") {
            throw SdkError(SdkError::unknownOption,
                           "There is no global option \"" + call.key + "\" = \"" + call.value + "\" to set");
        }
        lastError = {};
        return {};
    }

    const Script& script;
    /// By serial number.
    std::map<std::string, Instrument> instruments;
    bool isUnplugged = false;
    LastError lastError;
};

/// Applies scripts, and answers each call by a fault, a replay or the instruments. Its public functions can be called
/// from any thread.
class Simulator : public Library {
public:
    Simulator() { use(nullptr); }

    /// Implements I1PRO3_SimulatorUse.
    const char* use(const char* text) {
        const Lock lock(mutex);
        try {
            text != nullptr ? change(text) : reset();
            return nullptr;
        } catch (const std::exception& error) {
            scriptError = error.what();
            return scriptError.c_str();
        }
    }

    const char* description() const override {
        const Lock lock(mutex);
        return script.description.c_str();
    }

    std::string nameOf(I1PRO3_DeviceHandle device) const override {
        const Lock lock(mutex);
        const auto found = std::ranges::find_if(handles, [&](const auto& entry) { return &entry.second == device; });
        return found != handles.end() ? found->first : "unknown";
    }

    /// Throws only after all locks are released: a foreign exception skips this compiler's destructors.
    std::int32_t perform(const Call& call, const Outputs& outputs, const Forward& /*forward*/) override {
        const Answer answer = execute(call, outputs);
        if (answer.isForeign) throwForeign(*answer.exception);
        if (answer.exception) throw std::runtime_error(*answer.exception);
        return answer.result;
    }

private:
    using Lock = std::lock_guard<std::mutex>;

    /// Returns to the initial state, with the script and the trace that the environment names. If they have an error,
    /// all calls fail with it.
    void reset() {
        failure.reset();
        trace.reset();
        script = {};
        instruments.attach();
        instruments.clearError();
        try {
            const auto file = common::pathFromEnvironment("I1PRO3_SIMULATOR");
            Script first = file ? readScript(*file) : Script();
            if (!first.trace) first.trace = common::pathFromEnvironment("I1PRO3_TRACE");
            activate(std::move(first));
        } catch (const std::exception& error) {
            script.description = std::string("simulated i1Pro 3, not set up: ") + error.what();
            failure.emplace(SdkError::invalidSetup, error.what());
            throw;
        }
    }

    /// Applies a script to the current state.
    void change(const char* text) {
        if (failure) throw std::runtime_error(script.description);
        Script next = script;
        applyScript("script", text, next);
        activate(std::move(next));
    }

    void activate(Script next) {
        if (const auto file = std::exchange(next.trace, std::nullopt)) {
            trace = file->empty() ? nullptr : std::make_unique<Trace>(*file, next.description, true);
        }
        const bool hasSameInstruments = next.instruments == script.instruments;
        script = std::move(next);
        if (!hasSameInstruments) instruments.attach();
    }

    Answer execute(const Call& call, const Outputs& outputs) {
        const auto begin = std::chrono::steady_clock::now();
        std::this_thread::sleep_for(latencyOf(call.function));
        const Lock lock(mutex);
        Answer answer = answerTo(call);
        if (trace) trace->write(call, answer, begin);
        writeOutputs(answer, outputs);
        if (answer.devices && outputs.list != nullptr) *outputs.list = handlesOf(*answer.devices);
        return answer;
    }

    std::chrono::milliseconds latencyOf(Function function) {
        const Lock lock(mutex);
        return script.latency[function];
    }

    Answer answerTo(const Call& call) {
        if (failure) return failure->persistentAnswer(call);
        instruments.rearmButton(call);
        std::optional<Answer> answer = applyFaults(call);
        try {
            if (!answer) answer = script.replay ? script.replay->answer(call) : instruments.answer(call);
        } catch (const SdkError& error) {
            answer = error.answer(call);
        }
        instruments.storeError(call, *answer);
        return *answer;
    }

    /// Counts the call for every fault that it matches.
    /// @return the answer of the first fault that has one, if any
    std::optional<Answer> applyFaults(const Call& call) {
        std::optional<Answer> answer;
        for (Fault& fault : script.faults) {
            if (!fault.countAndTest(call)) continue;
            if (fault.unplug) {
                instruments.setUnplugged(*fault.unplug);
            } else if (!answer) {
                answer = fault.answerTo(call);
            }
        }
        return answer;
    }

    I1PRO3_DeviceHandle* handlesOf(const std::vector<std::string>& names) {
        std::vector<I1PRO3_DeviceHandle>& list = lists[names];
        for (std::size_t i = list.size(); i < names.size(); ++i) {
            list.push_back(&handles[names[i]]);
        }
        return list.data();
    }

    mutable std::mutex mutex;
    /// The last error message that use returned.
    std::string scriptError;
    /// Answers all calls while the script or trace named by the environment has an error.
    std::optional<SdkError> failure;
    Script script;
    Instruments instruments{script};
    std::unique_ptr<Trace> trace;
    /// By device name. The address of the value is the device's handle, valid until the library is unloaded.
    std::map<std::string, char> handles;
    /// The lists returned by I1PRO3_GetDevices, valid until the library is unloaded.
    std::map<std::vector<std::string>, std::vector<I1PRO3_DeviceHandle>> lists;
};

} // namespace

std::unique_ptr<Library> createLibrary() {
    return std::make_unique<Simulator>();
}

} // namespace simulator

const char* I1PRO3_SimulatorUse(const char* script) {
    return static_cast<simulator::Simulator&>(simulator::library()).use(script);
}

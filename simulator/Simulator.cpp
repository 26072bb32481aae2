#include "simulator/Simulator.h"

#include "common/Environment.h"
#include "simulator/I1PRO3_Simulator.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <iterator>
#include <stdexcept>
#include <thread>
#include <utility>

namespace simulator {

namespace {

using Lock = std::lock_guard<std::mutex>;

Simulator* theSimulator = nullptr;
std::once_flag isCreated;

[[gnu::destructor]] void unload() {
    delete theSimulator;
}

} // namespace

/// A static object would be destroyed too early: static objects of the host may still call the library from their
/// destructors.
Simulator& Simulator::instance() {
    std::call_once(isCreated, [] { theSimulator = new Simulator; });
    return *theSimulator;
}

const char* Simulator::use(const char* text) {
    const Lock lock(mutex);
    try {
        scriptError.clear();
        if (text == nullptr) {
            reset();
        } else {
            if (failure) throw std::runtime_error(description);
            Script next = script;
            applyScript("script", text, next);
            activate(std::move(next));
        }
    } catch (const std::exception& error) {
        scriptError = error.what();
    }
    return scriptError.empty() ? nullptr : scriptError.c_str();
}

/// Returns to the initial state, with the script and the trace that the environment names. If they have an error, all
/// calls fail with it.
void Simulator::reset() {
    failure.reset();
    replay.reset();
    trace.reset();
    faults.clear();
    script = {};
    instruments.clearError();
    instruments.attach(script);
    try {
        const auto file = common::pathFromEnvironment("I1PRO3_SIMULATOR");
        Script first = file ? readScript(*file) : Script();
        if (!first.trace) first.trace = common::pathFromEnvironment("I1PRO3_TRACE");
        activate(std::move(first));
    } catch (const std::exception& error) {
        description = std::string("simulated i1Pro 3, not set up: ") + error.what();
        failure.emplace(SdkError::Code::invalidSetup, error.what());
        throw;
    }
}

/// Makes a script the current one. Moves its one-time events out of it, so that applying another
/// script later doesn't repeat them.
void Simulator::activate(Script next) {
    if (next.trace) {
        trace = next.trace->empty() ? nullptr : std::make_unique<Trace>(*next.trace, descriptionOf(next), true);
        next.trace.reset();
    }
    description = descriptionOf(next);
    if (next.replay) replay.emplace(*std::exchange(next.replay, std::nullopt));
    if (next.faults) faults = *std::exchange(next.faults, std::nullopt);
    const bool hasSameInstruments = next.instruments == script.instruments;
    script = std::move(next);
    if (!hasSameInstruments) instruments.attach(script);
}

const char* Simulator::describe() const {
    const Lock lock(mutex);
    return description.c_str();
}

std::string Simulator::nameOf(I1PRO3_DeviceHandle device) const {
    const Lock lock(mutex);
    const auto found =
        std::find_if(handles.begin(), handles.end(), [&](const auto& entry) { return &entry.second == device; });
    return found != handles.end() ? found->first : "unknown";
}

Answer Simulator::perform(const Call& call, const Outputs& outputs) {
    const auto begin = std::chrono::steady_clock::now();
    simulateLatency(call.function);
    const Lock lock(mutex);
    Answer answer = answerTo(call);
    if (trace) trace->write(call, answer, begin);
    writeOutputs(answer, outputs);
    if (answer.devices && outputs.list != nullptr) *outputs.list = handlesOf(*answer.devices);
    return answer;
}

void Simulator::simulateLatency(Function function) const {
    std::chrono::milliseconds latency{0};
    {
        const Lock lock(mutex);
        const auto found = script.latency.find(function);
        if (found != script.latency.end()) latency = found->second;
    }
    std::this_thread::sleep_for(latency);
}

Answer Simulator::answerTo(const Call& call) {
    if (failure) return failure->persistentAnswer(call);
    instruments.rearmButton(call);
    std::optional<Answer> answer = applyFaults(call);
    if (!answer) answer = replay ? replay->answer(call) : instruments.answer(call);
    instruments.storeError(call, *answer);
    return *answer;
}

/// Counts the call for every fault that it matches.
/// @return the answer of the first fault that has one, if any
std::optional<Answer> Simulator::applyFaults(const Call& call) {
    std::optional<Answer> answer;
    for (Fault& fault : faults) {
        if (!fault.countAndTest(call)) continue;
        if (fault.unplug) {
            instruments.setUnplugged(*fault.unplug);
        } else if (!answer) {
            answer = fault.answerTo(call);
        }
    }
    return answer;
}

I1PRO3_DeviceHandle* Simulator::handlesOf(const std::vector<std::string>& names) {
    std::vector<I1PRO3_DeviceHandle>& list = lists[names];
    if (list.empty()) {
        std::transform(names.begin(), names.end(), std::back_inserter(list),
                       [this](const std::string& name) { return &handles[name]; });
    }
    return list.data();
}

std::string nameOf(I1PRO3_DeviceHandle device) {
    return Simulator::instance().nameOf(device);
}

/// Throws only after all locks are released: a foreign exception skips this compiler's destructors.
std::int32_t perform(const Call& call, const Outputs& outputs, const Forward& /*forward*/) {
    const Answer answer = Simulator::instance().perform(call, outputs);
    if (answer.isForeign) throwForeign(*answer.exception);
    if (answer.exception) throw std::runtime_error(*answer.exception);
    return answer.result;
}

} // namespace simulator

const char* I1PRO3_SimulatorUse(const char* script) {
    return simulator::Simulator::instance().use(script);
}

const char* I1PRO3_SimulatorDescription() {
    return simulator::Simulator::instance().describe();
}

#include "simulator/Simulator.h"

#include <algorithm>
#include <cstdlib>
#include <thread>

namespace simulator {

namespace {

using Lock = std::lock_guard<std::mutex>;

bool matches(const Answer& answer, const Call& call) {
    if (!answer.function.empty() && answer.function != call.function) return false;
    return answer.argument.empty() ||
           std::find(call.arguments.begin(), call.arguments.end(), answer.argument) != call.arguments.end();
}

} // namespace

Simulator& Simulator::instance() {
    static Simulator simulator;
    return simulator;
}

void Simulator::reset() {
    const Lock lock(mutex);
    recorded.clear();
    answers.clear();
    lastErrorText.clear();
    lastErrorNumber.clear();
    start();
}

/// Begins with the script that the environment names. When that one is wrong, there is nothing but its failure.
void Simulator::start() {
    script = {};
    script.instruments.clear();
    instruments.clear();
    handles.clear();
    scriptFailure.clear();
    const char* const file = std::getenv("I1PRO3_SIMULATOR");
    try {
        change(file != nullptr ? readScript(file) : Script());
    } catch (const ScriptError& error) {
        scriptFailure = error.what();
    }
}

void Simulator::use(const std::string& text) {
    const Lock lock(mutex);
    Script next = script;
    next.faults.clear();
    applyScript("script", text, next);
    change(std::move(next));
}

void Simulator::change(Script next) {
    for (Answer& fault : next.faults) {
        answers.push_back({std::move(fault)});
    }
    next.faults.clear();
    if (next.unplug) callsToUnplug = next.unplug->call;
    const bool isSameSet = next.instruments == script.instruments;
    script = std::move(next);
    if (isSameSet) return;
    instruments.clear();
    handles.clear();
    for (const std::string& serial : script.instruments) {
        instruments.push_back(std::make_unique<Instrument>(serial, script));
        handles.push_back(instruments.back().get());
    }
}

std::vector<Call> Simulator::calls() const {
    const Lock lock(mutex);
    return recorded;
}

void Simulator::clearCalls() {
    const Lock lock(mutex);
    recorded.clear();
}

void Simulator::answer(const Answer& answer) {
    const Lock lock(mutex);
    answers.push_back({answer});
}

void Simulator::clearAnswers() {
    const Lock lock(mutex);
    answers.clear();
}

std::int32_t Simulator::run(const Call& call, const std::function<std::int32_t()>& work,
                            const std::function<void(const Answer&)>& writeOutput) {
    const auto latency = latencyOf(call);
    if (latency.count() > 0) std::this_thread::sleep_for(latency);
    const Lock lock(mutex);
    recorded.push_back(call);
    countToUnplug(call);
    if (const Answer* const answer = findAnswer(call)) {
        if (answer->throws) throw std::runtime_error("simulated exception of " + call.function);
        if (writeOutput) writeOutput(*answer);
        const std::string text = answer->errorText.value_or("Simulated failure of " + call.function);
        return fail(call, answer->result, text, answer->errorNumber.value_or(std::to_string(answer->result)));
    }
    try {
        return work();
    } catch (const SdkError& error) {
        const auto number = static_cast<std::int32_t>(error.code);
        return fail(call, number, error.what(), std::to_string(number));
    }
}

/// Keeps what is to be told of a failure. Asking for it, too, may fail, and changes nothing then.
std::int32_t Simulator::fail(const Call& call, std::int32_t result, const std::string& text,
                             const std::string& number) {
    if (result != 0 && call.function != "I1PRO3_GetGlobalOption") {
        lastErrorText = text;
        lastErrorNumber = number;
    }
    return result;
}

const Answer* Simulator::findAnswer(const Call& call) {
    for (PendingAnswer& pending : answers) {
        if (!matches(pending.answer, call)) continue;
        ++pending.seen;
        const Answer& answer = pending.answer;
        if (pending.seen < answer.position) continue;
        if (answer.times == 0 || pending.seen - answer.position < answer.times) return &answer;
    }
    return nullptr;
}

std::chrono::milliseconds Simulator::latencyOf(const Call& call) const {
    const Lock lock(mutex);
    const auto found = script.latency.find(call.function);
    return found != script.latency.end() ? found->second : std::chrono::milliseconds(0);
}

void Simulator::countToUnplug(const Call& call) {
    if (script.unplug && script.unplug->function == call.function && callsToUnplug > 0) --callsToUnplug;
}

bool Simulator::isUnplugged() const {
    return script.unplug && callsToUnplug == 0;
}

std::vector<I1PRO3_DeviceHandle>& Simulator::deviceList() {
    static std::vector<I1PRO3_DeviceHandle> none;
    if (!scriptFailure.empty()) throw SdkError(ErrorCode::invalidScript, scriptFailure);
    return isUnplugged() ? none : handles;
}

Instrument& Simulator::instrument(I1PRO3_DeviceHandle handle) {
    const auto found = std::find(handles.begin(), handles.end(), handle);
    if (found == handles.end()) throw SdkError(ErrorCode::invalidDevice, "There is no such device");
    Instrument& instrument = *instruments[static_cast<std::size_t>(found - handles.begin())];
    if (isUnplugged()) {
        throw SdkError(ErrorCode::unplugged, "The device " + instrument.serialNumber() + " was unplugged");
    }
    return instrument;
}

std::string Simulator::globalOption(const std::string& key) const {
    if (key == "LastErrorText") return lastErrorText;
    if (key == "LastErrorNumber") return lastErrorNumber;
    throw SdkError(ErrorCode::unknownOption, "There is no global option \"" + key + "\"");
}

void Simulator::resetAll(const std::string& key, const std::string& value) {
    if (key != "Reset" || value != "All") {
        throw SdkError(ErrorCode::unknownOption,
                       "There is no global option \"" + key + "\" = \"" + value + "\" to set");
    }
    lastErrorText.clear();
    lastErrorNumber.clear();
}

std::string Simulator::nameOf(I1PRO3_DeviceHandle handle) const {
    const Lock lock(mutex);
    if (handle == nullptr) return "null";
    const auto found = std::find(handles.begin(), handles.end(), handle);
    if (found == handles.end()) return "unknown";
    return instruments[static_cast<std::size_t>(found - handles.begin())]->serialNumber();
}

} // namespace simulator

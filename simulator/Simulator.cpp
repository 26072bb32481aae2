#include "simulator/Simulator.h"

#include <algorithm>

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
    {
        const Lock lock(mutex);
        setup.buttonPolls = Setup().buttonPolls;
        setup.samples.reset();
        instruments.clear();
        handles.clear();
        recorded.clear();
        answers.clear();
        lastErrorText.clear();
        lastErrorNumber.clear();
    }
    setDevices(1);
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

void Simulator::setDevices(std::uint32_t count) {
    const Lock lock(mutex);
    while (instruments.size() < count) {
        instruments.push_back(std::make_unique<Instrument>("SIM" + std::to_string(instruments.size() + 1), setup));
        handles.push_back(instruments.back().get());
    }
    instruments.resize(count);
    handles.resize(count);
}

void Simulator::setButtonPolls(std::uint32_t polls) {
    const Lock lock(mutex);
    setup.buttonPolls = polls;
}

void Simulator::setSamples(std::optional<std::int32_t> count) {
    const Lock lock(mutex);
    setup.samples = count;
}

std::int32_t Simulator::run(const Call& call, const std::function<std::int32_t()>& work,
                            const std::function<void(const Answer&)>& writeOutput) {
    const Lock lock(mutex);
    recorded.push_back(call);
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

Instrument& Simulator::instrument(I1PRO3_DeviceHandle handle) {
    const auto found = std::find(handles.begin(), handles.end(), handle);
    if (found == handles.end()) throw SdkError(ErrorCode::invalidDevice, "There is no such device");
    return *instruments[static_cast<std::size_t>(found - handles.begin())];
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

#include "simulator/Faults.h"

namespace simulator {

namespace {

/// Whether the fault is for a call; counts the call.
bool isFor(Fault& fault, const Call& call) {
    if (fault.function && fault.function != call.function) return false;
    if (!fault.key.empty() && !call.hasArgument(fault.key)) return false;
    ++fault.seen;
    return fault.seen >= fault.call && (!fault.times || fault.seen - fault.call < *fault.times);
}

/// A fault's answer as the call can have it.
Answer fitted(const Fault& fault, const Call& call) {
    Answer answer = fault.answer;
    if (answer.exception) return {.exception = answer.exception, .isForeign = answer.isForeign};
    if (answer.result != 0) {
        answer.error = {
            fault.errorText.value_or(std::string("Simulated failure of ") + signatureOf(call.function).name),
            fault.errorNumber.value_or(std::to_string(answer.result))};
    }
    if (call.function == Function::getDevices && answer.size) {
        answer.count = answer.size;
        answer.devices.emplace();
    }
    if (!takes(call.function, "size")) answer.size.reset();
    if (call.room() == 0) answer.text.reset();
    if (answer.text) {
        answer.text = answer.text->substr(0, call.room());
        answer.isTerminated = false;
    }
    return answer;
}

} // namespace

std::optional<Answer> answerOf(std::vector<Fault>& faults, const Call& call) {
    const Fault* found = nullptr;
    for (Fault& fault : faults) { // each counts its calls
        if (isFor(fault, call) && found == nullptr) found = &fault;
    }
    return found != nullptr ? std::optional(fitted(*found, call)) : std::nullopt;
}

} // namespace simulator

#include "simulator/Faults.h"

namespace simulator {

namespace {

/// Counts the call if it matches the fault.
/// @return whether the fault applies to it
bool countAndTest(Fault& fault, const Call& call) {
    if (fault.function && fault.function != call.function) return false;
    if (!fault.key.empty() && !call.hasArgument(fault.key)) return false;
    ++fault.matches;
    return fault.matches >= fault.call && (!fault.times || fault.matches - fault.call < *fault.times);
}

/// The fault's answer, without the outputs that the call's function doesn't have.
Answer adaptAnswer(const Fault& fault, const Call& call) {
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
    if (!hasParameter(call.function, "size")) answer.size.reset();
    if (call.bufferSize() == 0) answer.text.reset();
    if (answer.text) {
        answer.text = answer.text->substr(0, call.bufferSize());
        answer.isTerminated = false;
    }
    return answer;
}

} // namespace

std::optional<Answer> answerOf(std::vector<Fault>& faults, const Call& call) {
    const Fault* found = nullptr;
    for (Fault& fault : faults) {
        if (countAndTest(fault, call) && found == nullptr) found = &fault;
    }
    return found != nullptr ? std::optional(adaptAnswer(*found, call)) : std::nullopt;
}

} // namespace simulator

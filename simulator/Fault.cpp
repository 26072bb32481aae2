#include "simulator/Fault.h"

#include <algorithm>

namespace simulator {

bool Fault::countAndTest(const Call& made) {
    if (function && function != made.function) return false;
    const auto isKey = [&](Parameter parameter) { return made.textOf(parameter) == key; };
    if (!key.empty() && std::ranges::none_of(signatureOf(made.function).parameters, isKey)) return false;
    ++matches;
    return matches >= call && (!times || matches - call < *times);
}

Answer Fault::answerTo(const Call& made) const {
    if (exception) return {.exception = exception, .isForeign = foreign};
    Answer answer{.result = result};
    const Signature& signature = signatureOf(made.function);
    if (result != 0) {
        answer.error = {text.value_or(std::string("Simulated failure of ") + signature.name),
                        number.value_or(std::to_string(result))};
    }
    if (std::ranges::count(signature.parameters, Parameter::size) > 0) answer.size = size;
    if (size && made.function == Function::GetDevices) {
        answer.count = size;
        answer.devices.emplace();
    }
    if (output && made.bufferSize() > 0) {
        answer.text = output->substr(0, made.bufferSize());
        answer.isTerminated = false;
    }
    return answer;
}

} // namespace simulator

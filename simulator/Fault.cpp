#include "simulator/Fault.h"

namespace simulator {

bool Fault::countAndTest(const Call& made) {
    if (function && function != made.function) return false;
    if (!key.empty() && !made.hasArgument(key)) return false;
    ++matches;
    return matches >= call && (!times || matches - call < *times);
}

Answer Fault::answerTo(const Call& made) const {
    if (answer.exception) return {.exception = answer.exception, .isForeign = answer.isForeign};
    Answer adapted = answer;
    if (answer.result != 0) {
        adapted.error = {errorText.value_or(std::string("Simulated failure of ") + signatureOf(made.function).name),
                         errorNumber.value_or(std::to_string(answer.result))};
    }
    if (made.function == Function::GetDevices && answer.size) {
        adapted.count = answer.size;
        adapted.devices.emplace();
    }
    if (!hasParameter(made.function, Parameter::size)) adapted.size.reset();
    if (made.bufferSize() == 0) adapted.text.reset();
    if (adapted.text) {
        adapted.text = adapted.text->substr(0, made.bufferSize());
        adapted.isTerminated = false;
    }
    return adapted;
}

} // namespace simulator

#include "simulator/SdkError.h"

namespace simulator {

Answer SdkError::answer(const Call& call) const {
    const auto number = static_cast<std::int32_t>(code);
    const bool isCount = call.function == Function::GetNumberOfAvailableSamples;
    return {.result = isCount ? -number : number, .error = LastError{what(), std::to_string(number)}};
}

Answer SdkError::persistentAnswer(const Call& call) const {
    const bool isQuery = call.function == Function::GetGlobalOption && !call.nullArgument();
    if (isQuery && call.key == "LastErrorText") return textAnswer(call, what());
    if (isQuery && call.key == "LastErrorNumber") {
        return textAnswer(call, std::to_string(static_cast<std::int32_t>(code)));
    }
    return answer(call);
}

Answer textAnswer(const Call& call, const std::string& text) {
    const auto needed = static_cast<std::uint32_t>(text.size() + 1);
    if (call.bufferSize() >= needed) return {.text = text};
    Answer answer = SdkError(SdkError::Code::bufferTooSmall, "The buffer is too small").answer(call);
    answer.size = needed;
    return answer;
}

} // namespace simulator

#include "simulator/Failure.h"

namespace simulator {

Answer failureOf(const Call& call, ErrorCode code, const std::string& text) {
    const auto number = static_cast<std::int32_t>(code);
    const bool isCount = call.function == Function::getNumberOfAvailableSamples;
    return {.result = isCount ? -number : number, .error = ErrorReport{text, std::to_string(number)}};
}

Answer textAnswer(const Call& call, const std::string& text) {
    const auto needed = static_cast<std::uint32_t>(text.size() + 1);
    if (call.bufferSize() >= needed) return {.text = text};
    Answer answer = failureOf(call, ErrorCode::bufferTooSmall, "The buffer is too small");
    answer.size = needed;
    return answer;
}

Answer PermanentFailure::answer(const Call& call) const {
    const bool isQuery = call.function == Function::getGlobalOption && call.nullArgument() == nullptr;
    if (isQuery && call.text("key") == "LastErrorText") return textAnswer(call, text);
    if (isQuery && call.text("key") == "LastErrorNumber") {
        return textAnswer(call, std::to_string(static_cast<std::int32_t>(code)));
    }
    return failureOf(call, code, text);
}

} // namespace simulator

#include "simulator/Call.h"

#include <algorithm>
#include <array>
#include <type_traits>

namespace simulator {

namespace {

using enum Parameter;

constexpr std::array parameterNames{"device", "key", "value", "list", "count", "buffer", "size", "values", "sample"};

template <Parameter... parameters>
constexpr std::array parametersOf{parameters...};

constexpr std::array allSignatures{
#define SDK_FUNCTION(name, declaration, ...) Signature{"I1PRO3_" #name, parametersOf<__VA_ARGS__>},
#include "simulator/SdkFunctions.inc"
#undef SDK_FUNCTION
};

} // namespace

constexpr std::span<const Signature> signatures = allSignatures;

const Signature& signatureOf(Function function) {
    return allSignatures.at(static_cast<std::size_t>(function));
}

const char* nameOf(Parameter parameter) {
    return parameterNames.at(static_cast<std::size_t>(parameter));
}

std::size_t numberOfValues(Function function) {
    if (function == Function::GetTriStimulus) return 3;
    return function == Function::GetSpectrum ? I1PRO3_NUMBER_OF_REFLECTIONS : 0;
}

std::optional<std::string> Call::textOf(Parameter parameter) const {
    if (isNull(parameter)) return "null";
    std::optional<std::string> text;
    visitArgument(*this, parameter, [&](const auto& member) {
        if constexpr (std::is_arithmetic_v<std::decay_t<decltype(member)>>) {
            text = std::to_string(member);
        } else {
            text = member;
        }
    });
    return text;
}

Answer textAnswer(const Call& call, const std::string& text) {
    const auto needed = static_cast<std::uint32_t>(text.size() + 1);
    if (call.bufferSize() >= needed) return {.text = text};
    Answer answer = SdkError(SdkError::bufferTooSmall, "The buffer is too small").answer(call);
    answer.size = needed;
    return answer;
}

void writeOutputs(const Answer& answer, const Outputs& outputs) {
    if (answer.text && outputs.buffer != nullptr && outputs.size != nullptr) {
        const std::size_t length = answer.text->size() + (answer.isTerminated ? 1 : 0);
        std::copy_n(answer.text->c_str(), std::min<std::size_t>(length, *outputs.size), outputs.buffer);
    }
    if (answer.size && outputs.size != nullptr) *outputs.size = *answer.size;
    if (answer.count && outputs.count != nullptr) *outputs.count = *answer.count;
    if (outputs.values != nullptr) std::ranges::copy(answer.values, outputs.values);
}

Answer SdkError::answer(const Call& call) const {
    const bool isCount = call.function == Function::GetNumberOfAvailableSamples;
    return {.result = isCount ? -code : code, .error = LastError{what(), std::to_string(code)}};
}

Answer SdkError::persistentAnswer(const Call& call) const {
    Answer failed = answer(call);
    if (call.function != Function::GetGlobalOption) return failed;
    if (call.key == "LastErrorText") return textAnswer(call, failed.error->text);
    if (call.key == "LastErrorNumber") return textAnswer(call, failed.error->number);
    return failed;
}

} // namespace simulator

#include "simulator/Call.h"

#include <algorithm>
#include <array>

namespace simulator {

namespace {

using enum Parameter;

constexpr std::array<const char*, numberOfParameters> parameterNames{"device", "key",  "value",  "list",  "count",
                                                                     "buffer", "size", "values", "sample"};

template <Parameter... parameters>
constexpr std::array parametersOf{parameters...};

constexpr std::array table{
#define SDK_FUNCTION(name, declaration, ...) Signature{"I1PRO3_" #name, parametersOf<__VA_ARGS__>},
#include "simulator/SdkFunctions.inc"
#undef SDK_FUNCTION
};

} // namespace

constexpr std::span<const Signature> signatures = table;

const Signature& signatureOf(Function function) {
    return table.at(static_cast<std::size_t>(function));
}

const char* nameOf(Parameter parameter) {
    return parameterNames.at(static_cast<std::size_t>(parameter));
}

bool hasParameter(Function function, Parameter parameter) {
    return std::ranges::count(signatureOf(function).parameters, parameter) > 0;
}

std::size_t numberOfValues(Function function) {
    if (function == Function::GetTriStimulus) return 3;
    return function == Function::GetSpectrum ? I1PRO3_NUMBER_OF_REFLECTIONS : 0;
}

std::optional<Parameter> Call::nullArgument() const {
    const auto& parameters = signatureOf(function).parameters;
    const auto found = std::ranges::find_if(parameters, [this](Parameter parameter) { return isNull(parameter); });
    return found != parameters.end() ? std::optional(*found) : std::nullopt;
}

std::optional<std::string> Call::textOf(Parameter parameter) const {
    if (isNull(parameter)) return "null";
    switch (parameter) {
    case Parameter::device:
        return device;
    case Parameter::key:
        return key;
    case Parameter::value:
        return value;
    case Parameter::size:
        return std::to_string(size);
    case Parameter::sample:
        return std::to_string(sample);
    default:
        return std::nullopt;
    }
}

bool Call::hasArgument(const std::string& text) const {
    const auto isText = [&](Parameter parameter) { return textOf(parameter) == text; };
    return std::ranges::any_of(signatureOf(function).parameters, isText);
}

std::uint32_t Call::bufferSize() const {
    return isNull(Parameter::buffer) ? 0 : size;
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

} // namespace simulator

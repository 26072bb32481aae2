#include "simulator/Call.h"

#include <algorithm>

namespace simulator {

constexpr std::array<Signature, 14> signatures{{
    {"I1PRO3_GetDevices", {"list", "count"}},
    {"I1PRO3_OpenDevice", {"device"}},
    {"I1PRO3_CloseDevice", {"device"}},
    {"I1PRO3_GetConnectionStatus", {"device"}},
    {"I1PRO3_SetOption", {"device", "key", "value"}},
    {"I1PRO3_GetOption", {"device", "key", "buffer", "size"}},
    {"I1PRO3_SetGlobalOption", {"key", "value"}},
    {"I1PRO3_GetGlobalOption", {"key", "buffer", "size"}},
    {"I1PRO3_GetButtonStatusD", {"device"}},
    {"I1PRO3_Calibrate", {"device"}},
    {"I1PRO3_TriggerMeasurement", {"device"}},
    {"I1PRO3_GetNumberOfAvailableSamples", {"device"}},
    {"I1PRO3_GetTriStimulus", {"device", "values", "sample"}},
    {"I1PRO3_GetSpectrum", {"device", "values", "sample"}},
}};

const Signature& signatureOf(Function function) {
    return signatures[static_cast<std::size_t>(function)];
}

bool hasParameter(Function function, std::string_view parameter) {
    const auto& parameters = signatureOf(function).parameters;
    return std::find(parameters.begin(), parameters.end(), parameter) != parameters.end();
}

std::size_t numberOfValues(Function function) {
    if (function == Function::getTriStimulus) return 3;
    return function == Function::getSpectrum ? I1PRO3_NUMBER_OF_REFLECTIONS : 0;
}

Function functionNamed(const Json& json) {
    return functionNamed(json, json.get<std::string>());
}

Function functionNamed(const Json& place, const std::string& name) {
    std::vector<std::string> names;
    for (const Signature& signature : signatures) {
        if (signature.name == name) return static_cast<Function>(names.size());
        names.emplace_back(signature.name);
    }
    throw ValueError(place, fmt::format("unknown function \"{}\"; expected one of {}", name, fmt::join(names, ", ")));
}

std::string Call::text(const char* argument) const {
    return textOf(arguments.at(argument));
}

bool Call::hasArgument(const std::string& value) const {
    return std::any_of(arguments.begin(), arguments.end(), [&](const Json& argument) {
        return (argument.is_null() || argument.is_number() ? argument.dump() : textOf(argument)) == value;
    });
}

std::uint32_t Call::bufferSize() const {
    const bool hasBuffer = hasParameter(function, "buffer") && !arguments.contains("buffer");
    return hasBuffer && arguments.at("size").is_number() ? arguments.at("size").get<std::uint32_t>() : 0;
}

const char* Call::nullArgument() const {
    for (const auto& [name, argument] : arguments.get_ref<const Json::object_t&>()) {
        if (argument.is_null()) return name.c_str();
    }
    return nullptr;
}

std::string Call::describe() const {
    return std::string(signatureOf(function).name) + ' ' + arguments.dump();
}

void writeOutputs(const Answer& answer, const Call& call) {
    if (answer.text && call.buffer != nullptr && call.size != nullptr) {
        const std::size_t length = answer.text->size() + (answer.isTerminated ? 1 : 0);
        std::copy_n(answer.text->c_str(), std::min<std::size_t>(length, *call.size), call.buffer);
    }
    if (answer.size && call.size != nullptr) *call.size = *answer.size;
    if (answer.count && call.count != nullptr) *call.count = *answer.count;
    if (call.values != nullptr) std::copy(answer.values.begin(), answer.values.end(), call.values);
}

} // namespace simulator

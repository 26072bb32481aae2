#include "simulator/SdkCall.h"

#include <algorithm>

namespace simulator {

using enum Parameter;

constexpr std::array<Signature, 14> signatures{{
    {"I1PRO3_GetDevices", {list}},
    {"I1PRO3_OpenDevice", {device}},
    {"I1PRO3_CloseDevice", {device}},
    {"I1PRO3_GetConnectionStatus", {device}},
    {"I1PRO3_SetOption", {device, key, value}},
    {"I1PRO3_GetOption", {device, key, buffer}},
    {"I1PRO3_SetGlobalOption", {key, value}},
    {"I1PRO3_GetGlobalOption", {key, buffer}},
    {"I1PRO3_GetButtonStatusD", {device}},
    {"I1PRO3_Calibrate", {device}},
    {"I1PRO3_TriggerMeasurement", {device}},
    {"I1PRO3_GetNumberOfAvailableSamples", {device}},
    {"I1PRO3_GetTriStimulus", {device, tristimulus, sample}},
    {"I1PRO3_GetSpectrum", {device, spectrum, sample}},
}};

const Signature& signatureOf(Function function) {
    return signatures[static_cast<std::size_t>(function)];
}

const Signature* findSignature(std::string_view name) {
    const auto* const found =
        std::find_if(signatures.begin(), signatures.end(), [&](const Signature& each) { return each.name == name; });
    return found != signatures.end() ? found : nullptr;
}

bool takes(const Signature& signature, Parameter parameter) {
    return std::find(signature.parameters.begin(), signature.parameters.end(), parameter) != signature.parameters.end();
}

std::size_t valuesOf(Function function) {
    if (function == Function::getTriStimulus) return 3;
    return function == Function::getSpectrum ? 36 : 0;
}

} // namespace simulator

#include "simulator/Instruments.h"

#include "simulator/Colour.h"
#include "version.h"

#include <algorithm>

namespace simulator {

namespace {

void requireNoNullArgument(const Call& call) {
    const std::optional<Parameter> parameter = call.nullArgument();
    if (!parameter) return;
    throw SdkError(parameter == Parameter::device ? SdkError::Code::invalidDevice : SdkError::Code::invalidArgument,
                   std::string("The argument \"") + nameOf(*parameter) + "\" is null");
}

} // namespace

void Instruments::attach(const Script& script) {
    instruments.clear();
    for (const std::string& serial : script.instruments) {
        const auto index = static_cast<std::uint32_t>(instruments.size());
        instruments.push_back(std::make_unique<Instrument>(serial, index, script));
    }
    isUnplugged = false;
}

void Instruments::setUnplugged(bool areUnplugged) {
    isUnplugged = areUnplugged;
    for (const auto& instrument : instruments) {
        instrument->close();
    }
}

Answer Instruments::answer(const Call& call) try {
    requireNoNullArgument(call);
    return perform(call);
} catch (const SdkError& error) {
    return error.answer(call);
}

Answer Instruments::perform(const Call& call) {
    switch (call.function) {
    case Function::GetDevices:
        return listDevices();
    case Function::OpenDevice:
        instrumentOf(call).open();
        break;
    case Function::CloseDevice:
        instrumentOf(call).close();
        break;
    case Function::GetConnectionStatus:
        instrumentOf(call);
        break;
    case Function::SetOption:
        instrumentOf(call).setOption(call.key, call.value);
        break;
    case Function::GetOption:
        return textAnswer(call, instrumentOf(call).option(call.key));
    case Function::SetGlobalOption:
        setGlobalOption(call);
        break;
    case Function::GetGlobalOption:
        return globalOption(call);
    case Function::GetButtonStatusD:
        return {.result = instrumentOf(call).isButtonPressed() ? 0 : I1PRO3_BUTTON_NOT_PRESSED};
    case Function::Calibrate:
        instrumentOf(call).calibrate();
        break;
    case Function::TriggerMeasurement:
        instrumentOf(call).trigger();
        break;
    case Function::GetNumberOfAvailableSamples:
        return {.result = instrumentOf(call).numberOfSamples()};
    case Function::GetTriStimulus:
        return tristimulus(call);
    case Function::GetSpectrum:
        return spectrum(call);
    }
    return {};
}

void Instruments::rearmButton(const Call& call) {
    switch (call.function) {
    case Function::OpenDevice:
    case Function::CloseDevice:
    case Function::Calibrate:
    case Function::TriggerMeasurement:
        if (Instrument* const instrument = find(call)) instrument->rearmButton();
        break;
    default:
        break;
    }
}

void Instruments::storeError(const Call& call, const Answer& answer) {
    if (answer.error && call.function != Function::GetGlobalOption) lastError = *answer.error;
}

/// The instrument that the call is for; null if the device handle is invalid.
Instrument* Instruments::find(const Call& call) const {
    const auto found = std::find_if(instruments.begin(), instruments.end(),
                                    [&](const auto& instrument) { return call.device == instrument->name(); });
    return found != instruments.end() ? found->get() : nullptr;
}

Instrument& Instruments::instrumentOf(const Call& call) const {
    Instrument* const instrument = find(call);
    if (instrument == nullptr) throw SdkError(SdkError::Code::invalidDevice, "There is no such device");
    if (isUnplugged) {
        throw SdkError(SdkError::Code::unplugged, "The device " + instrument->name() + " was unplugged");
    }
    return *instrument;
}

Answer Instruments::listDevices() const {
    std::vector<std::string> names;
    for (const auto& instrument : instruments) {
        if (!isUnplugged) names.push_back(instrument->name());
    }
    return {.count = static_cast<std::uint32_t>(names.size()), .devices = names};
}

Answer Instruments::globalOption(const Call& call) const {
    if (call.key == "SDKVersion") return textAnswer(call, "simulated i1Pro 3 SDK " SPM_VERSION_TEXT);
    if (call.key == "LastErrorText") return textAnswer(call, lastError.text);
    if (call.key == "LastErrorNumber") return textAnswer(call, lastError.number);
    throw SdkError(SdkError::Code::unknownOption, "There is no global option \"" + call.key + '"');
}

void Instruments::setGlobalOption(const Call& call) {
    if (call.key != "Reset" || call.value != "All") {
        throw SdkError(SdkError::Code::unknownOption,
                       "There is no global option \"" + call.key + "\" = \"" + call.value + "\" to set");
    }
    clearError();
}

Answer Instruments::tristimulus(const Call& call) const {
    const auto [L, a, b] = cieLab(instrumentOf(call).readSample(call.sample, Quantity::lab), d65TenDegree);
    return {.values = {static_cast<float>(L), static_cast<float>(a), static_cast<float>(b)}};
}

Answer Instruments::spectrum(const Call& call) const {
    Answer answer;
    for (const double factor : instrumentOf(call).readSample(call.sample, Quantity::spectrum)) {
        answer.values.push_back(static_cast<float>(factor));
    }
    return answer;
}

} // namespace simulator

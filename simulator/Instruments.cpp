#include "simulator/Instruments.h"

#include "simulator/Colour.h"
#include "version.h"

#include <algorithm>

namespace simulator {

namespace {

void requireNoNullArgument(const Call& call) {
    const char* const name = call.nullArgument();
    if (name == nullptr) return;
    throw SdkError(std::string_view(name) == "device" ? ErrorCode::invalidDevice : ErrorCode::invalidArgument,
                   fmt::format("The argument \"{}\" is null", name));
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

Answer Instruments::answer(const Call& call) try {
    requireNoNullArgument(call);
    return perform(call);
} catch (const SdkError& error) {
    return failureOf(call, error.code, error.what());
}

Answer Instruments::perform(const Call& call) {
    switch (call.function) {
    case Function::getDevices:
        return listDevices();
    case Function::openDevice:
        instrumentOf(call).open();
        break;
    case Function::closeDevice:
        instrumentOf(call).close();
        break;
    case Function::getConnectionStatus:
        instrumentOf(call);
        break;
    case Function::setOption:
        instrumentOf(call).setOption(call.text("key"), call.text("value"));
        break;
    case Function::getOption:
        return textAnswer(call, instrumentOf(call).option(call.text("key")));
    case Function::setGlobalOption:
        setGlobalOption(call.text("key"), call.text("value"));
        break;
    case Function::getGlobalOption:
        return globalOption(call);
    case Function::getButtonStatusD:
        return {.result = instrumentOf(call).isButtonPressed() ? 0 : I1PRO3_BUTTON_NOT_PRESSED};
    case Function::calibrate:
        instrumentOf(call).calibrate();
        break;
    case Function::triggerMeasurement:
        instrumentOf(call).trigger();
        break;
    case Function::getNumberOfAvailableSamples:
        return {.result = instrumentOf(call).numberOfSamples()};
    case Function::getTriStimulus:
        return tristimulus(call);
    case Function::getSpectrum:
        return spectrum(call);
    }
    return {};
}

void Instruments::rearmButton(const Call& call) {
    switch (call.function) {
    case Function::openDevice:
    case Function::closeDevice:
    case Function::calibrate:
    case Function::triggerMeasurement:
        if (Instrument* const instrument = find(call)) instrument->rearmButton();
        break;
    default:
        break;
    }
}

void Instruments::storeError(const Call& call, const Answer& answer) {
    if (answer.error && call.function != Function::getGlobalOption) lastError = *answer.error;
}

/// The instrument that the call is for; null if the device handle is invalid.
Instrument* Instruments::find(const Call& call) const {
    const auto found = std::find_if(instruments.begin(), instruments.end(), [&](const auto& instrument) {
        return call.arguments.at("device") == instrument->name();
    });
    return found != instruments.end() ? found->get() : nullptr;
}

Instrument& Instruments::instrumentOf(const Call& call) const {
    Instrument* const instrument = find(call);
    if (instrument == nullptr) throw SdkError(ErrorCode::invalidDevice, "There is no such device");
    if (isUnplugged) {
        throw SdkError(ErrorCode::unplugged, "The device " + instrument->name() + " was unplugged");
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
    const std::string key = call.text("key");
    if (key == "SDKVersion") return textAnswer(call, "simulated i1Pro 3 SDK " SPM_VERSION_TEXT);
    if (key == "LastErrorText") return textAnswer(call, lastError.text);
    if (key == "LastErrorNumber") return textAnswer(call, lastError.number);
    throw SdkError(ErrorCode::unknownOption, "There is no global option \"" + key + '"');
}

void Instruments::setGlobalOption(const std::string& key, const std::string& value) {
    if (key != "Reset" || value != "All") {
        throw SdkError(ErrorCode::unknownOption,
                       "There is no global option \"" + key + "\" = \"" + value + "\" to set");
    }
    clearError();
}

Answer Instruments::tristimulus(const Call& call) const {
    const auto [L, a, b] = cieLab(instrumentOf(call).readSample(call.arguments.at("sample")), d65TenDegree);
    return {.values = {static_cast<float>(L), static_cast<float>(a), static_cast<float>(b)}};
}

Answer Instruments::spectrum(const Call& call) const {
    Answer answer;
    for (const double factor : instrumentOf(call).readSample(call.arguments.at("sample"))) {
        answer.values.push_back(static_cast<float>(factor));
    }
    return answer;
}

} // namespace simulator

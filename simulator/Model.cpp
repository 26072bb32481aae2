#include "simulator/Model.h"

#include "simulator/Colour.h"
#include "version.h"

#include <algorithm>

namespace simulator {

namespace {

void expectComplete(const Request& request) {
    for (const auto& [name, argument] : request.arguments.items()) {
        if (!argument.is_null()) continue;
        throw SdkError(name == "device" ? ErrorCode::invalidDevice : ErrorCode::invalidArgument,
                       "The argument \"" + name + "\" is null");
    }
}

} // namespace

void Model::attach(const Script& script) {
    instruments.clear();
    for (const std::string& serial : script.instruments) {
        const auto index = static_cast<std::uint32_t>(instruments.size());
        instruments.push_back(std::make_unique<Instrument>(serial, index, script));
    }
    isUnplugged = false;
}

Reply Model::answer(const Request& request) {
    constexpr Reply buttonPressed{.result = 0};
    constexpr Reply buttonNotPressed{.result = 1001};
    expectComplete(request);
    switch (request.function) {
    case Function::getDevices:
        return listDevices();
    case Function::openDevice:
        instrumentOf(request).open();
        break;
    case Function::closeDevice:
        instrumentOf(request).close();
        break;
    case Function::getConnectionStatus:
        instrumentOf(request);
        break;
    case Function::setOption:
        instrumentOf(request).setOption(request.text("key"), request.text("value"));
        break;
    case Function::getOption:
        return textReply(request, instrumentOf(request).option(request.text("key")));
    case Function::setGlobalOption:
        setGlobalOption(request.text("key"), request.text("value"));
        break;
    case Function::getGlobalOption:
        return globalOption(request);
    case Function::getButtonStatusD:
        return instrumentOf(request).isButtonPressed() ? buttonPressed : buttonNotPressed;
    case Function::calibrate:
        instrumentOf(request).calibrate();
        break;
    case Function::triggerMeasurement:
        instrumentOf(request).trigger();
        break;
    case Function::getNumberOfAvailableSamples:
        return {.result = instrumentOf(request).numberOfSamples()};
    case Function::getTriStimulus:
        return tristimulus(request);
    case Function::getSpectrum:
        return spectrum(request);
    }
    return {};
}

void Model::notice(const Request& request) {
    switch (request.function) {
    case Function::openDevice:
    case Function::closeDevice:
    case Function::calibrate:
    case Function::triggerMeasurement:
        if (Instrument* const instrument = find(request)) instrument->releaseButton();
        break;
    default:
        break;
    }
}

Instrument* Model::find(const Request& request) const {
    if (!request.isComplete()) return nullptr;
    const auto found =
        std::find_if(instruments.begin(), instruments.end(),
                     [name = request.text("device")](const auto& each) { return each->serialNumber() == name; });
    return found != instruments.end() ? found->get() : nullptr;
}

Instrument& Model::instrumentOf(const Request& request) const {
    Instrument* const instrument = find(request);
    if (instrument == nullptr) throw SdkError(ErrorCode::invalidDevice, "There is no such device");
    if (isUnplugged) {
        throw SdkError(ErrorCode::unplugged, "The device " + instrument->serialNumber() + " was unplugged");
    }
    return *instrument;
}

Reply Model::listDevices() const {
    std::vector<std::string> names;
    for (const auto& instrument : instruments) {
        if (!isUnplugged) names.push_back(instrument->serialNumber());
    }
    return {.outputs = {.count = static_cast<std::uint32_t>(names.size()), .devices = names}};
}

Reply Model::globalOption(const Request& request) const {
    if (request.text("key") == "SDKVersion") return textReply(request, "simulated i1Pro 3 SDK " SPM_VERSION_TEXT);
    return lastError.read(request);
}

void Model::setGlobalOption(const std::string& key, const std::string& value) {
    if (key != "Reset" || value != "All") {
        throw SdkError(ErrorCode::unknownOption,
                       "There is no global option \"" + key + "\" = \"" + value + "\" to set");
    }
    lastError.clear();
}

Reply Model::tristimulus(const Request& request) const {
    const Lab lab = cieLab(instrumentOf(request).readSample(request.arguments.at("sample")), d65TenDegree);
    return {.outputs = {.values = {static_cast<float>(lab.L), static_cast<float>(lab.a), static_cast<float>(lab.b)}}};
}

Reply Model::spectrum(const Request& request) const {
    const Reflectance reflectance = instrumentOf(request).readSample(request.arguments.at("sample"));
    Reply reply;
    for (const double factor : reflectance) {
        reply.outputs.values.push_back(static_cast<float>(factor));
    }
    return reply;
}

} // namespace simulator

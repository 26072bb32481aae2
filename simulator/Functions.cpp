// The SDK library's fourteen exported functions. Each packs its arguments into a Call and passes it to perform(), so
// that the simulator and the recorder share them.

#include "simulator/Call.h"

using simulator::Call;
using simulator::Function;

namespace {

void add(Call& call, const std::string& name, I1PRO3_DeviceHandle device) {
    call.arguments[name] = device != nullptr ? simulator::Json(simulator::nameOf(device)) : simulator::Json();
}

void add(Call& call, const std::string& name, const char* text) {
    call.arguments[name] = text != nullptr ? simulator::jsonOf(text) : simulator::Json();
}

void add(Call& call, const std::string& name, std::int32_t sample) {
    call.arguments[name] = sample;
}

void add(Call& call, const std::string& name, std::uint32_t* number) {
    if (number == nullptr) call.arguments[name] = nullptr;
    if (name == "count") {
        call.count = number;
    } else {
        call.size = number;
        if (number != nullptr) call.arguments[name] = *number;
    }
}

template <class Element>
void addOutput(Call& call, const std::string& name, Element* address, Element*& output) {
    if (address == nullptr) call.arguments[name] = nullptr;
    output = address;
}

void add(Call& call, const std::string& name, I1PRO3_DeviceHandle** list) {
    addOutput(call, name, list, call.list);
}

void add(Call& call, const std::string& name, char* buffer) {
    addOutput(call, name, buffer, call.buffer);
}

void add(Call& call, const std::string& name, float* values) {
    addOutput(call, name, values, call.values);
}

template <class... Arguments>
std::int32_t perform(Function function, Arguments... arguments) {
    Call call{.function = function};
    const auto* name = simulator::signatureOf(function).parameters.begin();
    (add(call, std::string(*name++), arguments), ...);
    call.forward = [=](void* address) {
        return reinterpret_cast<std::int32_t (*)(Arguments...)>(address)(arguments...);
    };
    return simulator::perform(call);
}

} // namespace

int32_t I1PRO3_GetDevices(I1PRO3_DeviceHandle** devices, uint32_t* count) {
    return perform(Function::getDevices, devices, count);
}

int32_t I1PRO3_OpenDevice(I1PRO3_DeviceHandle device) {
    return perform(Function::openDevice, device);
}

int32_t I1PRO3_CloseDevice(I1PRO3_DeviceHandle device) {
    return perform(Function::closeDevice, device);
}

int32_t I1PRO3_GetConnectionStatus(I1PRO3_DeviceHandle device) {
    return perform(Function::getConnectionStatus, device);
}

int32_t I1PRO3_SetOption(I1PRO3_DeviceHandle device, const char* key, const char* value) {
    return perform(Function::setOption, device, key, value);
}

int32_t I1PRO3_GetOption(I1PRO3_DeviceHandle device, const char* key, char* buffer, uint32_t* size) {
    return perform(Function::getOption, device, key, buffer, size);
}

int32_t I1PRO3_SetGlobalOption(const char* key, const char* value) {
    return perform(Function::setGlobalOption, key, value);
}

int32_t I1PRO3_GetGlobalOption(const char* key, char* buffer, uint32_t* size) {
    return perform(Function::getGlobalOption, key, buffer, size);
}

int32_t I1PRO3_GetButtonStatusD(I1PRO3_DeviceHandle device) {
    return perform(Function::getButtonStatusD, device);
}

int32_t I1PRO3_Calibrate(I1PRO3_DeviceHandle device) {
    return perform(Function::calibrate, device);
}

int32_t I1PRO3_TriggerMeasurement(I1PRO3_DeviceHandle device) {
    return perform(Function::triggerMeasurement, device);
}

int32_t I1PRO3_GetNumberOfAvailableSamples(I1PRO3_DeviceHandle device) {
    return perform(Function::getNumberOfAvailableSamples, device);
}

int32_t I1PRO3_GetTriStimulus(I1PRO3_DeviceHandle device, float* tristimulus, int32_t sample) {
    return perform(Function::getTriStimulus, device, tristimulus, sample);
}

int32_t I1PRO3_GetSpectrum(I1PRO3_DeviceHandle device, float* spectrum, int32_t sample) {
    return perform(Function::getSpectrum, device, spectrum, sample);
}

// The library's functions: each names its call, and says in a line what it does.

#include "simulator/Colour.h"
#include "simulator/Simulator.h"

#include <algorithm>
#include <cstring>

using simulator::Answer;
using simulator::Call;
using simulator::ErrorCode;
using simulator::Instrument;
using simulator::SdkError;
using simulator::Simulator;

namespace {

Simulator& sdk() {
    return Simulator::instance();
}

std::string text(const char* argument) {
    return argument != nullptr ? argument : "null";
}

/// A call with a device, which must be one.
template <class Work>
std::int32_t onDevice(const char* function, I1PRO3_DeviceHandle device, std::vector<std::string> arguments, Work work) {
    arguments.insert(arguments.begin(), sdk().nameOf(device));
    return sdk().run({function, std::move(arguments)}, [&] { return work(sdk().instrument(device)); });
}

/// Hands out a text with its NUL; where it does not fit, only the size that it needs.
void writeText(const std::string& answer, char* buffer, std::uint32_t& size) {
    const auto needed = static_cast<std::uint32_t>(answer.size() + 1);
    if (size < needed) {
        size = needed;
        throw SdkError(ErrorCode::bufferTooSmall, "The buffer is too small");
    }
    std::memcpy(buffer, answer.c_str(), needed);
}

void writeOutput(const Answer& answer, char* buffer, std::uint32_t& size) {
    if (answer.output) std::copy_n(answer.output->data(), std::min<std::size_t>(answer.output->size(), size), buffer);
    if (answer.outputSize) size = *answer.outputSize;
}

/// A call that reads a text.
template <class Read>
std::int32_t readText(Call call, char* buffer, std::uint32_t* size, Read read) {
    if (buffer == nullptr || size == nullptr) {
        return sdk().run(call, []() -> std::int32_t { throw SdkError(ErrorCode::invalidArgument, "No buffer"); });
    }
    call.arguments.push_back(std::to_string(*size));
    return sdk().run(
        call,
        [&] {
            writeText(read(), buffer, *size);
            return 0;
        },
        [&](const Answer& answer) { writeOutput(answer, buffer, *size); });
}

} // namespace

int32_t I1PRO3_GetDevices(I1PRO3_DeviceHandle** devices, uint32_t* count) {
    return sdk().run(
        {"I1PRO3_GetDevices", {}},
        [&] {
            if (devices == nullptr || count == nullptr)
                throw SdkError(ErrorCode::invalidArgument, "No place for a list");
            *devices = sdk().deviceList().data();
            *count = static_cast<uint32_t>(sdk().deviceList().size());
            return 0;
        },
        [&](const Answer& answer) {
            if (answer.outputSize) *count = *answer.outputSize;
        });
}

int32_t I1PRO3_OpenDevice(I1PRO3_DeviceHandle device) {
    return onDevice("I1PRO3_OpenDevice", device, {}, [](Instrument& instrument) {
        instrument.open();
        return 0;
    });
}

int32_t I1PRO3_CloseDevice(I1PRO3_DeviceHandle device) {
    return onDevice("I1PRO3_CloseDevice", device, {}, [](Instrument& instrument) {
        instrument.close();
        return 0;
    });
}

int32_t I1PRO3_GetConnectionStatus(I1PRO3_DeviceHandle device) {
    return onDevice("I1PRO3_GetConnectionStatus", device, {}, [](Instrument&) { return 0; });
}

int32_t I1PRO3_SetOption(I1PRO3_DeviceHandle device, const char* key, const char* value) {
    return onDevice("I1PRO3_SetOption", device, {text(key), text(value)}, [&](Instrument& instrument) {
        instrument.setOption(text(key), text(value));
        return 0;
    });
}

int32_t I1PRO3_GetOption(I1PRO3_DeviceHandle device, const char* key, char* buffer, uint32_t* size) {
    return readText({"I1PRO3_GetOption", {sdk().nameOf(device), text(key)}}, buffer, size,
                    [&] { return sdk().instrument(device).option(text(key)); });
}

int32_t I1PRO3_SetGlobalOption(const char* key, const char* value) {
    return sdk().run({"I1PRO3_SetGlobalOption", {text(key), text(value)}}, [&] {
        sdk().resetAll(text(key), text(value));
        return 0;
    });
}

int32_t I1PRO3_GetGlobalOption(const char* key, char* buffer, uint32_t* size) {
    return readText({"I1PRO3_GetGlobalOption", {text(key)}}, buffer, size,
                    [&] { return sdk().globalOption(text(key)); });
}

int32_t I1PRO3_GetButtonStatusD(I1PRO3_DeviceHandle device) {
    constexpr std::int32_t pressed = 0;
    constexpr std::int32_t notPressed = 1001;
    return onDevice("I1PRO3_GetButtonStatusD", device, {},
                    [](Instrument& instrument) { return instrument.isButtonPressed() ? pressed : notPressed; });
}

int32_t I1PRO3_Calibrate(I1PRO3_DeviceHandle device) {
    return onDevice("I1PRO3_Calibrate", device, {}, [](Instrument& instrument) {
        instrument.calibrate();
        return 0;
    });
}

int32_t I1PRO3_TriggerMeasurement(I1PRO3_DeviceHandle device) {
    return onDevice("I1PRO3_TriggerMeasurement", device, {}, [](Instrument& instrument) {
        instrument.trigger();
        return 0;
    });
}

int32_t I1PRO3_GetNumberOfAvailableSamples(I1PRO3_DeviceHandle device) {
    return onDevice("I1PRO3_GetNumberOfAvailableSamples", device, {},
                    [](Instrument& instrument) { return instrument.numberOfSamples(); });
}

int32_t I1PRO3_GetTriStimulus(I1PRO3_DeviceHandle device, float* tristimulus, int32_t sample) {
    return onDevice("I1PRO3_GetTriStimulus", device, {std::to_string(sample)}, [&](Instrument& instrument) {
        if (tristimulus == nullptr) throw SdkError(ErrorCode::invalidArgument, "No place for the values");
        const simulator::Lab lab = cieLab(instrument.readSample(sample), sdk().weights());
        tristimulus[0] = static_cast<float>(lab.L);
        tristimulus[1] = static_cast<float>(lab.a);
        tristimulus[2] = static_cast<float>(lab.b);
        return 0;
    });
}

int32_t I1PRO3_GetSpectrum(I1PRO3_DeviceHandle device, float* spectrum, int32_t sample) {
    return onDevice("I1PRO3_GetSpectrum", device, {std::to_string(sample)}, [&](Instrument& instrument) {
        if (spectrum == nullptr) throw SdkError(ErrorCode::invalidArgument, "No place for the values");
        const simulator::Reflectance reflectance = instrument.readSample(sample);
        std::transform(reflectance.begin(), reflectance.end(), spectrum,
                       [](double factor) { return static_cast<float>(factor); });
        return 0;
    });
}

simulator::Control* I1PRO3_SimulatorControl() {
    return &sdk();
}

const char* I1PRO3_SimulatorDescription() {
    return "simulated i1Pro 3 with the ColorChecker Classic chart";
}

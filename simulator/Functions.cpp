// The SDK library's exported functions. Each packs its arguments into a Call and passes it to perform(), so that the
// simulator and the recorder share them.

#include "simulator/Call.h"

#include <cstdint>
#include <type_traits>

using simulator::Function;
using simulator::Parameter;

namespace {

/// Stores the arguments that are not null.
struct Packer {
    void store(Parameter, I1PRO3_DeviceHandle device) { call.device = simulator::nameOf(device); }
    void store(Parameter parameter, const char* text) { (parameter == Parameter::key ? call.key : call.value) = text; }
    void store(Parameter, std::int32_t sample) { call.sample = sample; }
    void store(Parameter, I1PRO3_DeviceHandle** list) { outputs.list = list; }
    void store(Parameter, char* buffer) { outputs.buffer = buffer; }
    void store(Parameter, float* values) { outputs.values = values; }
    void store(Parameter parameter, std::uint32_t* number) {
        if (parameter == Parameter::count) {
            outputs.count = number;
        } else {
            outputs.size = number;
            call.size = *number;
        }
    }

    template <class Argument>
    void pack(Parameter parameter, Argument argument) {
        if constexpr (std::is_pointer_v<Argument>) {
            if (argument == nullptr) return call.setNull(parameter);
        }
        store(parameter, argument);
    }

    simulator::Call call;
    simulator::Outputs outputs{};
};

template <class... Arguments>
std::int32_t perform(Function function, Arguments... arguments) {
    Packer packer{{.function = function}};
    auto parameter = simulator::signatureOf(function).parameters.begin();
    (packer.pack(*parameter++, arguments), ...);
    return simulator::perform(packer.call, packer.outputs, [=](void* address) {
        return reinterpret_cast<std::int32_t (*)(Arguments...)>(address)(arguments...);
    });
}

} // namespace

#define SDK_FUNCTION(name, declaration, ...)                                                                           \
    std::int32_t I1PRO3_##name declaration {                                                                           \
        return perform(Function::name, __VA_ARGS__);                                                                   \
    }
#include "simulator/SdkFunctions.inc"
#undef SDK_FUNCTION

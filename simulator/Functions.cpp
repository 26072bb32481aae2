// The functions that the simulated SDK library and the recorder export. Each of the SDK's packs its arguments into a
// Call, which is all that the two see of it.

#include "simulator/I1PRO3_Simulator.h"
#include "simulator/Library.h"

#include <mutex>
#include <type_traits>

using simulator::Function;
using simulator::Parameter;

namespace {

simulator::Library* theLibrary = nullptr;
std::once_flag isCreated;

[[gnu::destructor]] void unload() {
    delete theLibrary;
}

/// Stores the arguments that are not null.
struct Packer {
    void store(Parameter, I1PRO3_DeviceHandle device) { call.device = simulator::library().nameOf(device); }
    void store(Parameter parameter, const char* text) { (parameter == Parameter::key ? call.key : call.value) = text; }
    void store(Parameter, std::int32_t sample) { call.sample = sample; }
    void store(Parameter, I1PRO3_DeviceHandle** list) { outputs.list = list; }
    void store(Parameter, char* buffer) { outputs.buffer = buffer; }
    void store(Parameter, float* values) { outputs.values = values; }
    void store(Parameter parameter, std::uint32_t* number) {
        (parameter == Parameter::count ? outputs.count : outputs.size) = number;
        if (parameter == Parameter::size) call.size = *number;
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
    return simulator::library().perform(packer.call, packer.outputs, [=](void* address) {
        return reinterpret_cast<std::int32_t (*)(Arguments...)>(address)(arguments...);
    });
}

} // namespace

/// A static object would be destroyed too early: static objects of the host may still call the library from their
/// destructors.
simulator::Library& simulator::library() {
    std::call_once(isCreated, [] { theLibrary = createLibrary().release(); });
    return *theLibrary;
}

const char* I1PRO3_SimulatorDescription() {
    return simulator::library().description();
}

#define SDK_FUNCTION(name, declaration, ...)                                                                           \
    std::int32_t I1PRO3_##name declaration {                                                                           \
        return perform(Function::name, __VA_ARGS__);                                                                   \
    }
#include "simulator/SdkFunctions.inc"
#undef SDK_FUNCTION

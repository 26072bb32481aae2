// The recorder: a library of the SDK library's name and functions that passes each call on to the real one as it is,
// and writes a trace of it. It changes nothing that the host or the real library sees.

#include "loader/SharedLibrary.h"
#include "simulator/Backend.h"
#include "simulator/Control.h"
#include "simulator/ScriptError.h"
#include "simulator/System.h"
#include "simulator/Trace.h"

#include <cstring>
#include <fmt/format.h>

namespace simulator {

namespace {

using Description = const char*();

constexpr const char* libraryVariable = "I1PRO3_RECORDER_SDK";
constexpr const char* traceVariable = "I1PRO3_RECORDER_TRACE";

/// The library that calls are passed on to.
class Target {
public:
    explicit Target(const std::filesystem::path& file) : library(file) {
        for (const Signature& signature : signatures) {
            void* const address = library.find(signature.name);
            if (address == nullptr)
                throw ScriptError(file.string() + " is no SDK library: it has no " + signature.name);
            addresses.push_back(address);
        }
    }

    std::int32_t perform(const SdkCall& call) const {
        switch (call.function) {
        case Function::getDevices:
            return as(I1PRO3_GetDevices, call)(call.list, call.count);
        case Function::openDevice:
            return as(I1PRO3_OpenDevice, call)(call.device);
        case Function::closeDevice:
            return as(I1PRO3_CloseDevice, call)(call.device);
        case Function::getConnectionStatus:
            return as(I1PRO3_GetConnectionStatus, call)(call.device);
        case Function::setOption:
            return as(I1PRO3_SetOption, call)(call.device, call.key, call.value);
        case Function::getOption:
            return as(I1PRO3_GetOption, call)(call.device, call.key, call.buffer, call.size);
        case Function::setGlobalOption:
            return as(I1PRO3_SetGlobalOption, call)(call.key, call.value);
        case Function::getGlobalOption:
            return as(I1PRO3_GetGlobalOption, call)(call.key, call.buffer, call.size);
        case Function::getButtonStatusD:
            return as(I1PRO3_GetButtonStatusD, call)(call.device);
        case Function::calibrate:
            return as(I1PRO3_Calibrate, call)(call.device);
        case Function::triggerMeasurement:
            return as(I1PRO3_TriggerMeasurement, call)(call.device);
        case Function::getNumberOfAvailableSamples:
            return as(I1PRO3_GetNumberOfAvailableSamples, call)(call.device);
        case Function::getTriStimulus:
            return as(I1PRO3_GetTriStimulus, call)(call.device, call.values, call.sample);
        case Function::getSpectrum:
            return as(I1PRO3_GetSpectrum, call)(call.device, call.values, call.sample);
        }
        return 0;
    }

    /// Null when it is no simulation.
    const char* description() const {
        auto* const describe = reinterpret_cast<Description*>(library.find("I1PRO3_SimulatorDescription"));
        return describe != nullptr ? describe() : nullptr;
    }

private:
    /// Its function of the call, of the type that ours is of.
    template <class Type>
    Type* as(Type& /*ours*/, const SdkCall& call) const {
        return reinterpret_cast<Type*>(addresses[static_cast<std::size_t>(call.function)]);
    }

    loader::SharedLibrary library;
    std::vector<void*> addresses;
};

/// What stood in a call's out-parameters before it was made, to see what it left in them. Of a text's buffer no more is
/// read than must be there: the size may say more than there is.
class Before {
public:
    explicit Before(const SdkCall& made)
        : call(made), size(made.size != nullptr ? *made.size : 0), count(made.count != nullptr ? *made.count : 0),
          hasBuffer(made.buffer != nullptr && size > 0), firstByte(hasBuffer ? *made.buffer : '\0') {
        if (made.values != nullptr) values.assign(made.values, made.values + valuesOf(made.function));
    }

    /// @param isSuccess  whether the function says that there are outputs; otherwise only what changed is one
    /// @param nameOf     gives the name of a device that is handed out
    template <class NameOf>
    Outputs outputs(bool isSuccess, NameOf nameOf) const {
        Outputs left;
        if (call.size != nullptr && *call.size != size) left.size = *call.size;
        if (hasBuffer && (isSuccess || *call.buffer != firstByte)) {
            left.text.emplace(call.buffer, strnlen(call.buffer, size));
            left.isTerminated = left.text->size() < size;
        }
        const std::size_t bytes = values.size() * sizeof(float);
        if (bytes > 0 && (isSuccess || std::memcmp(values.data(), call.values, bytes) != 0)) {
            left.values.assign(call.values, call.values + values.size());
        }
        if (call.count != nullptr && (isSuccess || *call.count != count)) left.count = *call.count;
        if (call.list != nullptr && call.count != nullptr && isSuccess) left.devices = namesOf(nameOf);
        return left;
    }

private:
    template <class NameOf>
    std::vector<std::string> namesOf(NameOf nameOf) const {
        std::vector<std::string> names;
        for (std::uint32_t i = 0; i < *call.count && *call.list != nullptr; ++i) {
            names.push_back(nameOf((*call.list)[i]));
        }
        return names;
    }

    const SdkCall& call;
    std::uint32_t size;
    std::uint32_t count;
    bool hasBuffer;
    char firstByte;
    std::vector<float> values;
};

std::filesystem::path fileNamedBy(const char* variable, const char* whatItNames) {
    const auto file = fileOfEnvironment(variable);
    if (file) return *file;
    throw ScriptError(fmt::format("the environment variable {} is not set; it names {}", variable, whatItNames));
}

/// A name without a folder is one beside the recorder.
std::filesystem::path recordedLibrary() {
    std::filesystem::path file =
        ownFile().parent_path() /
        fileNamedBy(libraryVariable, "the vendor's library that the recorder passes calls on to");
    std::error_code none;
    if (std::filesystem::equivalent(file, ownFile(), none)) {
        throw ScriptError(fmt::format("{} names the recorder itself, {}", libraryVariable, file.string()));
    }
    return file;
}

class Recorder {
public:
    static Recorder& instance();

    std::int32_t perform(const SdkCall& call) { return failure ? fail(call) : record(call); }
    const char* description() const { return target ? target->description() : nullptr; }

private:
    Recorder() {
        try {
            const std::filesystem::path file = recordedLibrary();
            target.emplace(file);
            const char* const simulation = target->description();
            const std::string library = file.string() + (simulation != nullptr ? std::string(": ") + simulation : "");
            trace.emplace(fileNamedBy(traceVariable, "the file that the recorder writes its trace to"), library,
                          simulation != nullptr);
        } catch (const std::runtime_error& error) {
            failure.emplace(ErrorCode::invalidSetup, std::string("Recorder: ") + error.what(), lastError);
        }
    }

    std::int32_t record(const SdkCall& call) {
        const Before before(call);
        const auto work = [&] {
            const std::int32_t result = target->perform(call);
            return Reply{result, before.outputs(result == 0, [this](auto device) { return number(device); })};
        };
        const Trace::Time begin = std::chrono::steady_clock::now();
        return trace->record(requestOf(call, [this](auto device) { return nameOf(device); }), begin, work).result;
    }

    std::int32_t fail(const SdkCall& call) {
        const Request request = requestOf(call, [](I1PRO3_DeviceHandle) { return "unknown"; });
        const Reply reply = lastError.answerOf(*failure, request);
        Devices().handOut(reply.outputs, call);
        return reply.result;
    }

    /// Devices are numbered as they are first listed.
    std::string number(I1PRO3_DeviceHandle device) {
        const std::lock_guard<std::mutex> lock(mutex);
        const std::size_t next = names.size() + 1;
        return names.try_emplace(device, fmt::format("device {}", next)).first->second;
    }

    std::string nameOf(I1PRO3_DeviceHandle device) {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto found = names.find(device);
        return found != names.end() ? found->second : "unknown";
    }

    std::optional<Target> target;
    std::optional<Trace> trace;
    LastError lastError;
    std::optional<Failure> failure;
    std::mutex mutex;
    std::map<I1PRO3_DeviceHandle, std::string> names;
};

Recorder* theRecorder = nullptr;
std::once_flag isCreated;

[[gnu::destructor]] void unload() {
    delete theRecorder;
}

/// Not destroyed as static objects are: a host's own may call the library when they are destroyed, later than those.
Recorder& Recorder::instance() {
    std::call_once(isCreated, [] { theRecorder = new Recorder; });
    return *theRecorder;
}

} // namespace

std::int32_t perform(const SdkCall& call) {
    return Recorder::instance().perform(call);
}

} // namespace simulator

const char* I1PRO3_SimulatorDescription() {
    return simulator::Recorder::instance().description();
}

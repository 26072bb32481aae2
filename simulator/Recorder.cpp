// The recorder: a drop-in for the SDK library that forwards each call unchanged to the real library and writes a trace
// of it. Neither the host nor the real library sees a difference.

#include "common/Environment.h"
#include "common/SharedLibrary.h"
#include "simulator/Failure.h"
#include "simulator/I1PRO3_Simulator.h"
#include "simulator/Trace.h"

#include <cstring>
#include <map>
#include <mutex>

namespace simulator {

namespace {

using Description = const char*();

constexpr const char* libraryVariable = "I1PRO3_RECORDER_SDK";
constexpr const char* traceVariable = "I1PRO3_RECORDER_TRACE";

/// The real library.
class RecordedLibrary {
public:
    /// @throws ScriptError or common::LoadError
    explicit RecordedLibrary(const std::filesystem::path& file) : library(file) {
        for (const Signature& signature : signatures) {
            void* const address = library.find(signature.name);
            if (address == nullptr) {
                throw ScriptError(file.string() + " is not an SDK library: it has no " + signature.name);
            }
            addresses.push_back(address);
        }
    }

    std::int32_t perform(const Call& call) const {
        return call.forward(addresses[static_cast<std::size_t>(call.function)]);
    }

    /// Its I1PRO3_SimulatorDescription; null if it isn't a simulation.
    const char* description() const {
        auto* const describe = reinterpret_cast<Description*>(library.find("I1PRO3_SimulatorDescription"));
        return describe != nullptr ? describe() : nullptr;
    }

private:
    common::SharedLibrary library;
    std::vector<void*> addresses;
};

/// The values of a call's out-parameters before the call, to find out which ones it wrote. Of a text buffer, only the
/// first byte is compared: the host may pass a size larger than its buffer.
class OutputSnapshot {
public:
    explicit OutputSnapshot(const Call& pending)
        : call(pending), size(pending.size != nullptr ? *pending.size : 0),
          count(pending.count != nullptr ? *pending.count : 0), hasBuffer(pending.buffer != nullptr && size > 0),
          firstByte(hasBuffer ? *pending.buffer : '\0') {
        if (pending.values != nullptr) {
            values.assign(pending.values, pending.values + numberOfValues(pending.function));
        }
    }

    /// The call's result and outputs, except the devices. After a failure, only outputs that changed count.
    Answer answer(std::int32_t result) const {
        const bool isSuccess = result == 0;
        Answer made{.result = result};
        if (call.size != nullptr && *call.size != size) made.size = *call.size;
        if (hasBuffer && (isSuccess || *call.buffer != firstByte)) {
            made.text.emplace(call.buffer, strnlen(call.buffer, size));
            made.isTerminated = made.text->size() < size;
        }
        const std::size_t bytes = values.size() * sizeof(float);
        if (bytes > 0 && (isSuccess || std::memcmp(values.data(), call.values, bytes) != 0)) {
            made.values.assign(call.values, call.values + values.size());
        }
        if (call.count != nullptr && (isSuccess || *call.count != count)) made.count = *call.count;
        return made;
    }

private:
    const Call& call;
    std::uint32_t size;
    std::uint32_t count;
    bool hasBuffer;
    char firstByte;
    std::vector<float> values;
};

std::filesystem::path requiredFile(const char* variable, const char* purpose) {
    const auto file = common::pathFromEnvironment(variable);
    if (file) return *file;
    throw ScriptError(fmt::format("the environment variable {} is not set; it names {}", variable, purpose));
}

std::filesystem::path recorderFile() {
    return common::fileOf(reinterpret_cast<const void*>(&recorderFile));
}

/// Relative file names are relative to the recorder's folder.
std::filesystem::path recordedFile() {
    std::filesystem::path file = recorderFile().parent_path() /
                                 requiredFile(libraryVariable, "the vendor's library that the recorder forwards to");
    std::error_code ignored;
    if (std::filesystem::equivalent(file, recorderFile(), ignored)) {
        throw ScriptError(fmt::format("{} names the recorder itself, {}", libraryVariable, file.string()));
    }
    return file;
}

class Recorder {
public:
    static Recorder& instance();

    std::int32_t perform(const Call& call) { return failure ? fail(call) : record(call); }
    const char* description() const { return library ? library->description() : nullptr; }

    std::string nameOf(I1PRO3_DeviceHandle device) const {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto found = names.find(device);
        return found != names.end() ? found->second : "unknown";
    }

private:
    Recorder() {
        try {
            const std::filesystem::path file = recordedFile();
            library.emplace(file);
            const char* const simulation = library->description();
            const std::string name = file.string() + (simulation != nullptr ? std::string(": ") + simulation : "");
            trace.emplace(requiredFile(traceVariable, "the file that the recorder writes its trace to"), name,
                          simulation != nullptr);
        } catch (const std::runtime_error& error) {
            failure.emplace(ErrorCode::invalidSetup, std::string("Recorder: ") + error.what());
        }
    }

    std::int32_t record(const Call& call) {
        const OutputSnapshot before(call);
        const Trace::Time begin = std::chrono::steady_clock::now();
        try {
            const std::int32_t result = library->perform(call);
            Answer answer = before.answer(result);
            if (result == 0 && call.list != nullptr && call.count != nullptr) answer.devices = nameDevices(call);
            trace->write(call, answer, begin);
            return result;
        } catch (const std::exception& error) {
            trace->write(call, {.exception = error.what()}, begin);
            throw;
        } catch (...) {
            trace->write(call, {.exception = "an exception of an unknown kind"}, begin);
            throw;
        }
    }

    std::int32_t fail(const Call& call) const {
        const Answer answer = failure->answer(call);
        writeOutputs(answer, call);
        return answer.result;
    }

    /// The names of the devices that a call listed: "device 1" and so on, in the order of their first appearance.
    std::vector<std::string> nameDevices(const Call& call) {
        const std::lock_guard<std::mutex> lock(mutex);
        std::vector<std::string> listed;
        for (std::uint32_t i = 0; i < *call.count && *call.list != nullptr; ++i) {
            const std::string next = fmt::format("device {}", names.size() + 1);
            listed.push_back(names.try_emplace((*call.list)[i], next).first->second);
        }
        return listed;
    }

    std::optional<RecordedLibrary> library;
    std::optional<Trace> trace;
    /// Answers all calls if the recorder can't be set up.
    std::optional<PermanentFailure> failure;
    mutable std::mutex mutex;
    std::map<I1PRO3_DeviceHandle, std::string> names;
};

Recorder* theRecorder = nullptr;
std::once_flag isCreated;

[[gnu::destructor]] void unload() {
    delete theRecorder;
}

/// A static object would be destroyed too early: static objects of the host may still call the library from their
/// destructors.
Recorder& Recorder::instance() {
    std::call_once(isCreated, [] { theRecorder = new Recorder; });
    return *theRecorder;
}

} // namespace

std::string nameOf(I1PRO3_DeviceHandle device) {
    return Recorder::instance().nameOf(device);
}

std::int32_t perform(const Call& call) {
    return Recorder::instance().perform(call);
}

} // namespace simulator

const char* I1PRO3_SimulatorDescription() {
    return simulator::Recorder::instance().description();
}

// The recorder: a drop-in for the SDK library that forwards each call unchanged to the real library and writes a trace
// of it. Neither the host nor the real library sees a difference.

#include "common/Environment.h"
#include "common/SharedLibrary.h"
#include "simulator/I1PRO3_Simulator.h"
#include "simulator/SdkError.h"
#include "simulator/Trace.h"

#include <chrono>
#include <cstring>
#include <exception>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

namespace simulator {

namespace {

using Description = const char*();

constexpr const char* libraryVariable = "I1PRO3_RECORDER_SDK";
constexpr const char* traceVariable = "I1PRO3_RECORDER_TRACE";

/// The real library.
class RecordedLibrary {
public:
    /// @throws std::runtime_error  if it can't be loaded or is not an SDK library
    explicit RecordedLibrary(const std::filesystem::path& file) : library(file) {
        for (const Signature& signature : signatures) {
            void* const address = library.find(signature.name);
            if (address == nullptr) {
                throw std::runtime_error(file.string() + " is not an SDK library: it has no " + signature.name);
            }
            addresses.push_back(address);
        }
    }

    void* addressOf(Function function) const { return addresses[static_cast<std::size_t>(function)]; }

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
    OutputSnapshot(Function function, const Outputs& hostOutputs)
        : outputs(hostOutputs), size(outputs.size != nullptr ? *outputs.size : 0),
          count(outputs.count != nullptr ? *outputs.count : 0), hasBuffer(outputs.buffer != nullptr && size > 0),
          firstByte(hasBuffer ? *outputs.buffer : '\0') {
        if (outputs.values != nullptr) values.assign(outputs.values, outputs.values + numberOfValues(function));
    }

    /// The call's result and outputs, except the devices. After a failure, only outputs that changed count.
    Answer answer(std::int32_t result) const {
        const bool isSuccess = result == 0;
        Answer made{.result = result};
        if (outputs.size != nullptr && *outputs.size != size) made.size = *outputs.size;
        if (hasBuffer && (isSuccess || *outputs.buffer != firstByte)) {
            made.text.emplace(outputs.buffer, strnlen(outputs.buffer, size));
            made.isTerminated = made.text->size() < size;
        }
        const std::size_t bytes = values.size() * sizeof(float);
        if (bytes > 0 && (isSuccess || std::memcmp(values.data(), outputs.values, bytes) != 0)) {
            made.values.assign(outputs.values, outputs.values + values.size());
        }
        if (outputs.count != nullptr && (isSuccess || *outputs.count != count)) made.count = *outputs.count;
        return made;
    }

private:
    const Outputs& outputs;
    std::uint32_t size;
    std::uint32_t count;
    bool hasBuffer;
    char firstByte;
    std::vector<float> values;
};

std::filesystem::path requiredFile(const char* variable, const char* purpose) {
    const auto file = common::pathFromEnvironment(variable);
    if (file) return *file;
    throw std::runtime_error(std::string("the environment variable ") + variable + " is not set; it names " + purpose);
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
        throw std::runtime_error(std::string(libraryVariable) + " names the recorder itself, " + file.string());
    }
    return file;
}

class Recorder {
public:
    static Recorder& instance();

    std::int32_t perform(const Call& call, const Outputs& outputs, const Forward& forward) {
        return failure ? fail(call, outputs) : record(call, outputs, forward);
    }
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
            failure.emplace(SdkError::Code::invalidSetup, std::string("Recorder: ") + error.what());
        }
    }

    std::int32_t record(const Call& call, const Outputs& outputs, const Forward& forward) {
        const OutputSnapshot before(call.function, outputs);
        const Trace::Time begin = std::chrono::steady_clock::now();
        try {
            const std::int32_t result = forward(library->addressOf(call.function));
            Answer answer = before.answer(result);
            if (result == 0 && outputs.list != nullptr && outputs.count != nullptr) {
                answer.devices = nameDevices(*outputs.list, *outputs.count);
            }
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

    std::int32_t fail(const Call& call, const Outputs& outputs) const {
        const Answer answer = failure->persistentAnswer(call);
        writeOutputs(answer, outputs);
        return answer.result;
    }

    /// The names of the devices that a call listed: "device 1" and so on, in the order of their first appearance.
    std::vector<std::string> nameDevices(const I1PRO3_DeviceHandle* list, std::uint32_t count) {
        const std::lock_guard<std::mutex> lock(mutex);
        std::vector<std::string> listed;
        for (std::uint32_t i = 0; i < count && list != nullptr; ++i) {
            const std::string next = "device " + std::to_string(names.size() + 1);
            listed.push_back(names.try_emplace(list[i], next).first->second);
        }
        return listed;
    }

    std::optional<RecordedLibrary> library;
    std::optional<Trace> trace;
    /// Answers all calls if the recorder can't be set up.
    std::optional<SdkError> failure;
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

std::int32_t perform(const Call& call, const Outputs& outputs, const Forward& forward) {
    return Recorder::instance().perform(call, outputs, forward);
}

} // namespace simulator

const char* I1PRO3_SimulatorDescription() {
    return simulator::Recorder::instance().description();
}

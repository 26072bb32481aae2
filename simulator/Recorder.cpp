// The recorder: a drop-in for the SDK library that forwards each call unchanged to the real library and writes a trace
// of it. Neither the host nor the real library sees a difference.

#include "common/Environment.h"
#include "common/SharedLibrary.h"
#include "simulator/Library.h"
#include "simulator/Trace.h"

#include <chrono>
#include <cstring>
#include <filesystem>
#include <map>
#include <mutex>
#include <system_error>

namespace simulator {

namespace {

using Description = const char*();

constexpr const char* libraryVariable = "I1PRO3_RECORDER_SDK";

/// The values of a call's out-parameters before the call, to find out which ones it wrote. Of a text buffer, only the
/// first byte is compared: the host may pass a size larger than its buffer.
class OutputSnapshot {
public:
    OutputSnapshot(const Call& call, const Outputs& hostOutputs)
        : outputs(hostOutputs), size(call.size), bufferSize(call.bufferSize()),
          firstByte(bufferSize > 0 ? *outputs.buffer : '\0'), count(outputs.count != nullptr ? *outputs.count : 0) {
        if (outputs.values != nullptr) values.assign(outputs.values, outputs.values + numberOfValues(call.function));
    }

    /// The call's result and outputs, except the devices. After a failure, only outputs that changed count.
    Answer answer(std::int32_t result) const {
        const bool isSuccess = result == 0;
        Answer made{.result = result};
        if (outputs.size != nullptr && *outputs.size != size) made.size = *outputs.size;
        if (outputs.count != nullptr && (isSuccess || *outputs.count != count)) made.count = *outputs.count;
        if (bufferSize > 0 && (isSuccess || *outputs.buffer != firstByte)) {
            made.text.emplace(outputs.buffer, strnlen(outputs.buffer, bufferSize));
            made.isTerminated = made.text->size() < bufferSize;
        }
        const std::size_t bytes = values.size() * sizeof(float);
        if (bytes > 0 && (isSuccess || std::memcmp(values.data(), outputs.values, bytes) != 0)) {
            made.values.assign(outputs.values, outputs.values + values.size());
        }
        return made;
    }

private:
    const Outputs& outputs;
    std::uint32_t size;
    std::uint32_t bufferSize;
    char firstByte;
    std::uint32_t count;
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

class Recorder : public Library {
public:
    Recorder() {
        try {
            const std::filesystem::path file = recordedFile();
            vendor.emplace(file);
            for (const Signature& signature : signatures) {
                if (vendor->find(signature.name) != nullptr) continue;
                throw std::runtime_error(file.string() + " is not an SDK library: it has no " + signature.name);
            }
            const char* const simulation = description();
            const std::string name = file.string() + (simulation != nullptr ? std::string(": ") + simulation : "");
            trace.emplace(requiredFile("I1PRO3_RECORDER_TRACE", "the file that the recorder writes its trace to"), name,
                          simulation != nullptr);
        } catch (const std::runtime_error& error) {
            failure.emplace(SdkError::invalidSetup, std::string("Recorder: ") + error.what());
        }
    }

    std::string nameOf(I1PRO3_DeviceHandle device) const override {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto found = names.find(device);
        return found != names.end() ? found->second : "unknown";
    }

    std::int32_t perform(const Call& call, const Outputs& outputs, const Forward& forward) override {
        if (!failure) return record(call, outputs, forward);
        const Answer answer = failure->persistentAnswer(call);
        writeOutputs(answer, outputs);
        return answer.result;
    }

    const char* description() const override {
        auto* const describe =
            vendor ? reinterpret_cast<Description*>(vendor->find("I1PRO3_SimulatorDescription")) : nullptr;
        return describe != nullptr ? describe() : nullptr;
    }

private:
    std::int32_t record(const Call& call, const Outputs& outputs, const Forward& forward) {
        void* const address = vendor->find(signatureOf(call.function).name);
        const OutputSnapshot before(call, outputs);
        const Trace::Time begin = std::chrono::steady_clock::now();
        try {
            const std::int32_t result = forward(address);
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

    std::optional<common::SharedLibrary> vendor;
    std::optional<Trace> trace;
    /// Answers all calls if the recorder can't be set up.
    std::optional<SdkError> failure;
    mutable std::mutex mutex;
    std::map<I1PRO3_DeviceHandle, std::string> names;
};

} // namespace

std::unique_ptr<Library> createLibrary() {
    return std::make_unique<Recorder>();
}

} // namespace simulator

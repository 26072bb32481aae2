// The recorder: a library of the SDK library's name and functions that passes each call on to the real one as it is,
// and writes a trace of it. It changes nothing that the host or the real library sees.

#include "common/System.h"
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

/// The library that calls are passed on to.
class Target {
public:
    explicit Target(const std::filesystem::path& file) : library(file) {
        for (const Signature& signature : signatures) {
            void* const address = library.find(signature.name);
            if (address == nullptr) {
                throw ScriptError(file.string() + " is not an SDK library: it has no " + signature.name);
            }
            addresses.push_back(address);
        }
    }

    std::int32_t perform(const Call& call) const {
        return call.passOn(addresses[static_cast<std::size_t>(call.function)]);
    }

    /// Null when it is no simulation.
    const char* description() const {
        auto* const describe = reinterpret_cast<Description*>(library.find("I1PRO3_SimulatorDescription"));
        return describe != nullptr ? describe() : nullptr;
    }

private:
    common::SharedLibrary library;
    std::vector<void*> addresses;
};

/// What stood in a call's out-parameters before it was made, to see what it left in them. Of a text's buffer no more is
/// read than must be there: the size may say more than there is.
class Before {
public:
    explicit Before(const Call& made)
        : call(made), size(made.size != nullptr ? *made.size : 0), count(made.count != nullptr ? *made.count : 0),
          hasBuffer(made.buffer != nullptr && size > 0), firstByte(hasBuffer ? *made.buffer : '\0') {
        if (made.values != nullptr) values.assign(made.values, made.values + numberOfValues(made.function));
    }

    /// The outputs, all but the devices. When the function failed, only what changed is one.
    Answer answer(std::int32_t result) const {
        const bool isSuccess = result == 0;
        Answer left{.result = result};
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
        return left;
    }

private:
    const Call& call;
    std::uint32_t size;
    std::uint32_t count;
    bool hasBuffer;
    char firstByte;
    std::vector<float> values;
};

std::filesystem::path fileNamedBy(const char* variable, const char* whatItNames) {
    const auto file = common::fileOfEnvironment(variable);
    if (file) return *file;
    throw ScriptError(fmt::format("the environment variable {} is not set; it names {}", variable, whatItNames));
}

std::filesystem::path ownFile() {
    return common::fileOf(reinterpret_cast<const void*>(&ownFile));
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

    std::int32_t perform(const Call& call) { return failure ? fail(call) : record(call); }
    const char* description() const { return target ? target->description() : nullptr; }

    std::string nameOf(I1PRO3_DeviceHandle device) const {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto found = names.find(device);
        return found != names.end() ? found->second : "unknown";
    }

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
            failure.emplace(ErrorCode::invalidSetup, std::string("Recorder: ") + error.what());
        }
    }

    std::int32_t record(const Call& call) {
        const Before before(call);
        const Trace::Time begin = std::chrono::steady_clock::now();
        try {
            const std::int32_t result = target->perform(call);
            Answer answer = before.answer(result);
            if (result == 0 && call.list != nullptr && call.count != nullptr) answer.devices = numbered(call);
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
        handOut(answer, call);
        return answer.result;
    }

    /// Names of the devices that a call listed: they are numbered as they are first listed.
    std::vector<std::string> numbered(const Call& call) {
        const std::lock_guard<std::mutex> lock(mutex);
        std::vector<std::string> listed;
        for (std::uint32_t i = 0; i < *call.count && *call.list != nullptr; ++i) {
            const std::string next = fmt::format("device {}", names.size() + 1);
            listed.push_back(names.try_emplace((*call.list)[i], next).first->second);
        }
        return listed;
    }

    std::optional<Target> target;
    std::optional<Trace> trace;
    std::optional<LastingFailure> failure;
    mutable std::mutex mutex;
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

#include "simulator/Simulator.h"

#include "simulator/Replay.h"
#include "simulator/System.h"

#include <algorithm>
#include <mutex>
#include <thread>
#include <utility>

namespace simulator {

namespace {

using Lock = std::lock_guard<std::mutex>;

/// A call as tests see it.
Call callOf(const Request& request) {
    Call call{signatureOf(request.function).name, {}};
    for (const auto& [name, argument] : request.arguments.items()) {
        const bool isPlain = argument.is_null() || argument.is_number();
        call.arguments.push_back(isPlain ? argument.dump() : request.text(name.c_str()));
    }
    return call;
}

Simulator* theSimulator = nullptr;
std::once_flag isCreated;

[[gnu::destructor]] void unload() {
    delete theSimulator;
}

bool matches(const Answer& answer, const Call& call) {
    if (!answer.function.empty() && answer.function != call.function) return false;
    return answer.argument.empty() ||
           std::find(call.arguments.begin(), call.arguments.end(), answer.argument) != call.arguments.end();
}

Outputs outputsOf(const Answer& answer, const Request& request) {
    if (request.function == Function::getDevices && answer.outputSize) {
        return {.count = answer.outputSize, .devices = std::vector<std::string>()};
    }
    Outputs outputs;
    if (request.arguments.contains("size")) outputs.size = answer.outputSize;
    if (answer.output && request.size() > 0) {
        outputs.text = answer.output->substr(0, request.size());
        outputs.isTerminated = false;
    }
    return outputs;
}

} // namespace

/// Not destroyed as static objects are: a host's own may call the library when they are destroyed, later than those.
Simulator& Simulator::instance() {
    std::call_once(isCreated, [] { theSimulator = new Simulator; });
    return *theSimulator;
}

void Simulator::reset() {
    const Lock lock(mutex);
    recorded.clear();
    answers.clear();
    lastError.clear();
    start();
}

/// Begins with the script and the trace that the environment names. When something is wrong there, that is all that
/// there is.
void Simulator::start() {
    const auto file = fileOfEnvironment("I1PRO3_SIMULATOR");
    substitute.reset();
    trace.reset();
    unplug.reset();
    script = {};
    model.attach(script);
    try {
        Script first = file ? readScript(*file) : Script();
        if (!first.trace) first.trace = fileOfEnvironment("I1PRO3_TRACE");
        change(std::move(first));
    } catch (const std::exception& error) {
        description = std::string("simulated i1Pro 3, not set up: ") + error.what();
        substitute = std::make_unique<Failure>(ErrorCode::invalidSetup, error.what(), lastError);
    }
}

void Simulator::use(const std::string& text) {
    const Lock lock(mutex);
    Script next = script;
    applyScript("script", text, next);
    change(std::move(next));
}

/// Puts a script in force. What happens once, like a fault, is taken out of it.
void Simulator::change(Script next) {
    if (next.trace) trace = std::make_unique<Trace>(*next.trace, descriptionOf(next), true);
    description = descriptionOf(next);
    next.trace.reset();
    if (next.replay) substitute = std::make_unique<Replay>(*std::exchange(next.replay, std::nullopt), lastError);
    for (Answer& fault : std::exchange(next.faults, {})) {
        answers.push_back({std::move(fault)});
    }
    if (next.unplug) unplug = std::exchange(next.unplug, std::nullopt);
    const bool isSameSet = next.instruments == script.instruments;
    script = std::move(next);
    if (!isSameSet) model.attach(script);
}

std::vector<Call> Simulator::calls() const {
    const Lock lock(mutex);
    return recorded;
}

void Simulator::clearCalls() {
    const Lock lock(mutex);
    recorded.clear();
}

void Simulator::answer(const Answer& answer) {
    const Lock lock(mutex);
    answers.push_back({answer});
}

void Simulator::clearAnswers() {
    const Lock lock(mutex);
    answers.clear();
}

void Simulator::watch() {
    const Lock lock(mutex);
    isWatched = true;
}

const char* Simulator::describe() {
    const Lock lock(mutex);
    return description.c_str();
}

std::int32_t Simulator::perform(const SdkCall& call) {
    const auto begin = std::chrono::steady_clock::now();
    wait(call.function);
    const Lock lock(mutex);
    const Request request = requestOf(call, [&](I1PRO3_DeviceHandle device) { return devices.nameOf(device); });
    const auto work = [&] { return answerTo(request); };
    const Reply reply = trace ? trace->record(request, begin, work) : work();
    devices.handOut(reply.outputs, call);
    return reply.result;
}

void Simulator::wait(Function function) const {
    std::chrono::milliseconds latency{0};
    {
        const Lock lock(mutex);
        const auto found = script.latency.find(signatureOf(function).name);
        if (found != script.latency.end()) latency = found->second;
    }
    if (latency.count() > 0) std::this_thread::sleep_for(latency);
}

Reply Simulator::answerTo(const Request& request) {
    const Call call = callOf(request);
    if (isWatched) recorded.push_back(call);
    countToUnplug(call.function);
    model.notice(request);
    if (const Answer* const answer = findAnswer(call)) return give(*answer, request);
    return lastError.answerOf(substitute ? *substitute : model, request);
}

void Simulator::countToUnplug(const std::string& function) {
    if (!unplug || unplug->function != function) return;
    if (--unplug->call == 0) model.unplug();
}

const Answer* Simulator::findAnswer(const Call& call) {
    const Answer* found = nullptr;
    for (PendingAnswer& pending : answers) {
        const Answer& answer = pending.answer;
        if (!matches(answer, call)) continue;
        ++pending.seen;
        if (found != nullptr || pending.seen < answer.position) continue;
        if (answer.times == 0 || pending.seen - answer.position < answer.times) found = &answer;
    }
    return found;
}

Reply Simulator::give(const Answer& answer, const Request& request) {
    const std::string function = signatureOf(request.function).name;
    if (answer.throws) throw std::runtime_error("simulated exception of " + function);
    if (answer.result != 0) {
        lastError.keep(request, answer.errorText.value_or("Simulated failure of " + function),
                       answer.errorNumber.value_or(std::to_string(answer.result)));
    }
    return {answer.result, outputsOf(answer, request)};
}

std::int32_t perform(const SdkCall& call) {
    return Simulator::instance().perform(call);
}

} // namespace simulator

simulator::Control* I1PRO3_SimulatorControl() {
    simulator::Simulator::instance().watch();
    return &simulator::Simulator::instance();
}

const char* I1PRO3_SimulatorDescription() {
    return simulator::Simulator::instance().describe();
}

#include "simulator/Replay.h"

namespace simulator {

namespace {

std::string textOf(const std::string& function, const Json& arguments) {
    return function + ' ' + arguments.dump();
}

} // namespace

Reply Replay::answer(const Request& request) {
    if (departure) return departure->answer(request);
    if (next == recording.calls.size()) return depart(request, "ends before it");
    const TracedCall& call = recording.calls[next];
    if (call.function != signatureOf(request.function).name || call.arguments != request.arguments) {
        return depart(request,
                      "has " + textOf(call.function, call.arguments) + " in line " + std::to_string(call.line));
    }
    ++next;
    if (call.reply.exception) throw std::runtime_error(*call.reply.exception);
    return call.reply;
}

Reply Replay::depart(const Request& request, const std::string& recorded) {
    const std::string text = "Call " + std::to_string(next + 1) + " departs from the trace " + recording.fileName +
                             ": the host called " + textOf(signatureOf(request.function).name, request.arguments) +
                             ", the trace " + recorded;
    departure.emplace(ErrorCode::departure, text, lastError);
    return departure->answer(request);
}

} // namespace simulator

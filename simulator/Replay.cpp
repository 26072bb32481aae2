#include "simulator/Replay.h"

namespace simulator {

Answer Replay::answer(const Call& call) {
    if (departure) return departure->answer(call);
    if (next == recording.calls.size()) return depart(call, "ends before it");
    const auto& [recorded, answer, line] = recording.calls[next];
    if (recorded.function != call.function || recorded.arguments != call.arguments) {
        return depart(call, fmt::format("has {} in line {}", recorded.shown(), line));
    }
    ++next;
    return answer;
}

Answer Replay::depart(const Call& call, const std::string& recorded) {
    departure.emplace(ErrorCode::departure,
                      fmt::format("Call {} departs from the trace {}: the host called {}, the trace {}", next + 1,
                                  recording.fileName, call.shown(), recorded));
    return departure->answer(call);
}

} // namespace simulator

#include "simulator/Replay.h"

namespace simulator {

Answer Replay::answer(const Call& call) {
    if (failure) return failure->answer(call);
    if (next == recording.calls.size()) return failFromHere(call, "ends before it");
    const auto& [recorded, answer, line] = recording.calls[next];
    if (recorded.function != call.function || recorded.arguments != call.arguments) {
        return failFromHere(call, fmt::format("has {} in line {}", recorded.describe(), line));
    }
    ++next;
    return answer;
}

Answer Replay::failFromHere(const Call& call, const std::string& difference) {
    failure.emplace(ErrorCode::replayMismatch,
                    fmt::format("Call {} departs from the trace {}: the host called {}, the trace {}", next + 1,
                                recording.fileName, call.describe(), difference));
    return failure->answer(call);
}

} // namespace simulator

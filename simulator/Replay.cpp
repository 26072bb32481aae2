#include "simulator/Replay.h"

namespace simulator {

Answer Replay::answer(const Call& call) {
    if (difference) return difference->persistentAnswer(call);
    if (next == recording.calls.size()) return failFromHere(call, "ends before it");
    const auto& [recorded, answer, line] = recording.calls[next];
    if (recorded != call) {
        return failFromHere(call, "has " + describe(recorded) + " in line " + std::to_string(line));
    }
    ++next;
    return answer;
}

Answer Replay::failFromHere(const Call& call, const std::string& found) {
    difference.emplace(SdkError::Code::replayMismatch, "Call " + std::to_string(next + 1) + " departs from the trace " +
                                                           recording.fileName + ": the host called " + describe(call) +
                                                           ", the trace " + found);
    return difference->persistentAnswer(call);
}

} // namespace simulator

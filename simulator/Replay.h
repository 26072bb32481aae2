#pragma once

#include "simulator/Failure.h"
#include "simulator/Trace.h"

namespace simulator {

/// Answers from a trace, call by call. The first call that departs from it, and all after it, fail and say so.
class Replay {
public:
    explicit Replay(Recording played) : recording(std::move(played)) {}

    Answer answer(const Call& call);

private:
    Answer depart(const Call& call, const std::string& recorded);

    Recording recording;
    std::size_t next = 0;
    std::optional<LastingFailure> departure;
};

} // namespace simulator

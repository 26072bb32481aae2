#pragma once

#include "simulator/SdkError.h"
#include "simulator/Trace.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

namespace simulator {

/// Answers calls from a trace. The first call that differs from the trace fails, and so do all later ones.
class Replay {
public:
    explicit Replay(Recording recordedCalls) : recording(std::move(recordedCalls)) {}

    Answer answer(const Call& call);

private:
    Answer failFromHere(const Call& call, const std::string& found);

    Recording recording;
    std::size_t next = 0;
    std::optional<SdkError> difference;
};

} // namespace simulator

#pragma once

#include "simulator/Backend.h"
#include "simulator/Trace.h"

#include <optional>

namespace simulator {

/// Answers as a trace tells that was answered before, call by call. The first call that departs from the trace, and all
/// after it, fail and tell of it.
class Replay : public Backend {
public:
    Replay(Recording played, LastError& common) : recording(std::move(played)), lastError(common) {}

    Reply answer(const Request& request) override;

private:
    Reply depart(const Request& request, const std::string& recorded);

    Recording recording;
    LastError& lastError;
    std::size_t next = 0;
    std::optional<Failure> departure;
};

} // namespace simulator

#pragma once

// Traces: JSON Lines files of the calls of a run, written as they are made, and read to be replayed. The first line
// tells what was traced, each other line of one call.

#include "simulator/Call.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <mutex>

namespace simulator {

/// A trace being written. After a failed write, of a full disk, the trace has ended; the calls go on.
class Trace {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// Creates the file. When there is one of this name already, it is kept, and the new one's name gets a number.
    /// @param library      what the calls are made to
    /// @param isSimulated  whether a simulation answers
    /// @throws ScriptError  when the file can't be created and written to
    Trace(std::filesystem::path file, const std::string& library, bool isSimulated);

    /// Writes the line of a call that was just answered.
    /// @param begin  when it was made
    void write(const Call& call, const Answer& answer, Time begin);

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    bool writeLine(const Json& line);

    std::mutex mutex;
    std::filesystem::path path;
    std::unique_ptr<std::FILE, Closer> open;
    std::uintmax_t written = 0;
    std::uint64_t calls = 0;
};

/// A line of a trace: a call and its answer.
struct TracedCall {
    Call call{};
    Answer answer{};
    std::size_t line = 0;
};

struct Recording {
    std::string fileName;
    std::vector<TracedCall> calls;
};

/// @throws ScriptError  with the file, the line and what is wrong
Recording readTrace(const std::filesystem::path& path);

} // namespace simulator

#pragma once

// Traces: JSON Lines files with the calls of a run, written as the calls are made, and read for replays. The first line
// describes the traced library, each further line one call.

#include "simulator/Call.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <mutex>

namespace simulator {

/// Writes a trace. If a write fails, such as on a full disk, the trace ends without affecting the calls.
class Trace {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// Creates the file. If one of this name exists, the new name gets a number: "trace.2.jsonl".
    /// @param library      the traced library
    /// @param isSimulated  whether that library is a simulation
    /// @throws std::runtime_error  if the file can't be created or written to
    Trace(std::filesystem::path file, const std::string& library, bool isSimulated);

    /// Writes a call right after its return.
    /// @param begin  when the call was made
    void write(const Call& call, const Answer& answer, Time begin);

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    bool writeLine(const std::string& line);

    std::mutex mutex;
    std::filesystem::path path;
    /// Null after a failed write.
    std::unique_ptr<std::FILE, Closer> stream;
    /// The size of all whole lines.
    std::uintmax_t written = 0;
    std::uint64_t calls = 0;
};

/// A line of a trace: a call and its answer.
struct TracedCall {
    Call call{};
    Answer answer{};
    std::size_t line = 0;
};

/// @throws std::runtime_error  with the file, the line and the reason
std::vector<TracedCall> readTrace(const std::filesystem::path& path);

/// Answers calls from a trace. The first call that differs from the trace fails, and so do all later ones.
class Replay {
public:
    /// @throws std::runtime_error  like readTrace
    explicit Replay(const std::filesystem::path& path) : fileName(path.string()), calls(readTrace(path)) {}

    Answer answer(const Call& call);

private:
    std::string fileName;
    std::vector<TracedCall> calls;
    std::size_t next = 0;
    std::optional<SdkError> difference;
};

} // namespace simulator

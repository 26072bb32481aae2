#pragma once

// Traces: JSON Lines files of the calls of a run, written as they are made, and read to be replayed. The first line
// tells what was traced, each other line of one call.

#include "simulator/Request.h"

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

    /// Does what answers a call, and writes a line of it. What the work throws is written, too, and passed on.
    Reply record(const Request& request, Time begin, const std::function<Reply()>& work);

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    void writeCall(const Request& request, const Reply& reply, Time begin);
    bool write(const Json& line);

    std::mutex mutex;
    std::filesystem::path path;
    std::unique_ptr<std::FILE, Closer> open;
    std::uintmax_t written = 0;
    std::uint64_t calls = 0;
};

/// A line of a trace: a call and how it was answered.
struct TracedCall {
    std::size_t line = 0;
    std::string function{};
    Json arguments{};
    Reply reply{};
};

struct Recording {
    std::string fileName;
    std::vector<TracedCall> calls;
};

/// @throws ScriptError  with the file, the line and what is wrong
Recording readTrace(const std::filesystem::path& path);

} // namespace simulator

#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace spm {

/// Moves the cursor to the beginning of the terminal's line and clears the line.
inline constexpr const char* clearLine = "\r\x1b[K";

/// A line on the terminal that shows, during the object's lifetime, whether spm is waiting for the button or the
/// instrument is measuring. A thread updates it: a module call that finds the button pressed blocks until the
/// measurement is done.
class StatusLine {
public:
    /// @param progress  the beginning of the line
    /// @param isShown   false without a terminal: nothing is written
    StatusLine(std::string progress, bool isShown);
    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;
    ~StatusLine();

    /// To be called after each poll that found the button released.
    void notePoll() { lastPoll = Clock::now(); }

private:
    using Clock = std::chrono::steady_clock;

    void run();
    std::string text() const;
    void show(std::string text);

    const std::string prefix;
    const Clock::time_point begin = Clock::now();
    std::atomic<Clock::time_point> lastPoll = begin;
    std::string shown;
    std::mutex mutex;
    std::condition_variable ending;
    bool isEnding = false;
    std::thread thread;
};

} // namespace spm

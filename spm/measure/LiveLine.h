#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace spm {

/// Shows on a terminal, for the object's life, whether the button is waited for or the instrument measures. A thread of
/// its own writes the line: a call of the module that finds the button pressed returns only when all is measured.
class LiveLine {
public:
    /// @param progress  what the line begins with
    /// @param isShown   whether there is a terminal to show it on
    LiveLine(std::string progress, bool isShown);
    LiveLine(const LiveLine&) = delete;
    LiveLine& operator=(const LiveLine&) = delete;
    ~LiveLine();

    /// To be called whenever the button was found not pressed.
    void noteLook() { lastLook = Clock::now(); }

private:
    using Clock = std::chrono::steady_clock;

    void run();
    std::string text() const;
    void show(std::string text);

    const std::string beginning;
    const Clock::time_point begin = Clock::now();
    std::atomic<Clock::time_point> lastLook = begin;
    std::string shown;
    std::mutex mutex;
    std::condition_variable ending;
    bool isEnding = false;
    std::thread thread;
};

} // namespace spm

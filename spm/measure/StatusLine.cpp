#include "spm/measure/StatusLine.h"

#include "spm/Console.h"

#include <cstdio>
#include <fmt/format.h>
#include <limits>

namespace spm {

namespace {

constexpr auto interval = std::chrono::milliseconds(100);
/// A call that takes longer than any poll of the button is measuring.
constexpr auto longestPoll = std::chrono::milliseconds(400);

/// Ignores errors: a closed terminal must not stop the measurement.
void write(const std::string& text) {
    static_cast<void>(std::fputs(text.c_str(), stderr));
}

} // namespace

StatusLine::StatusLine(std::string progress, bool isShown) : prefix(std::move(progress)) {
    if (isShown) thread = std::thread([this] { run(); });
}

StatusLine::~StatusLine() {
    if (!thread.joinable()) return;
    {
        const std::lock_guard lock(mutex);
        isEnding = true;
    }
    ending.notify_one();
    thread.join();
    write("\r\x1b[K");
}

void StatusLine::run() {
    std::unique_lock lock(mutex);
    do {
        show(text());
    } while (!ending.wait_for(lock, interval, [this] { return isEnding; }));
}

std::string StatusLine::text() const {
    const Clock::time_point now = Clock::now();
    const Clock::time_point poll = lastPoll;
    const bool isMeasuring = now - poll > longestPoll;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(now - (isMeasuring ? poll : begin)).count();
    return fmt::format("{}; {}, {} s", prefix, isMeasuring ? "measuring" : "waiting for the button", seconds);
}

/// Leaves the last column empty: some terminals wrap to the next line when it is written.
void StatusLine::show(std::string text) {
    text.resize(std::min(text.size(), terminalWidth().value_or(std::numeric_limits<std::size_t>::max()) - 1));
    if (text == shown) return;
    write("\r\x1b[K" + text);
    shown = std::move(text);
}

} // namespace spm

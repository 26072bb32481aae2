#include "spm/measure/StatusLine.h"

#include "spm/Console.h"
#include "spm/measure/OutputFile.h"

#include <fmt/format.h>
#include <limits>

namespace spm {

namespace {

constexpr auto updateInterval = std::chrono::milliseconds(100);
/// A call that takes longer than any poll of the button is measuring.
constexpr auto longestPoll = std::chrono::milliseconds(400);

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
    writeToStderr(clearLine);
}

void StatusLine::run() {
    std::unique_lock lock(mutex);
    do {
        show(text());
    } while (!ending.wait_for(lock, updateInterval, [this] { return isEnding; }));
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
    writeToStderr(clearLine + text);
    shown = std::move(text);
}

} // namespace spm

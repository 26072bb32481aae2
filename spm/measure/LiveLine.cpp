#include "spm/measure/LiveLine.h"

#include "spm/Console.h"

#include <cstdio>
#include <fmt/format.h>
#include <limits>

namespace spm {

namespace {

constexpr auto interval = std::chrono::milliseconds(100);
/// A look at the button takes less; what takes longer is a measurement.
constexpr auto longestLook = std::chrono::milliseconds(400);

/// The line can't be shown any more when the terminal is gone; the measuring goes on.
void write(const std::string& text) {
    static_cast<void>(std::fputs(text.c_str(), stderr));
}

} // namespace

LiveLine::LiveLine(std::string progress, bool isShown) : beginning(std::move(progress)) {
    if (isShown) thread = std::thread([this] { run(); });
}

LiveLine::~LiveLine() {
    if (!thread.joinable()) return;
    {
        const std::lock_guard lock(mutex);
        isEnding = true;
    }
    ending.notify_one();
    thread.join();
    write("\r\x1b[K");
}

void LiveLine::run() {
    std::unique_lock lock(mutex);
    do {
        show(text());
    } while (!ending.wait_for(lock, interval, [this] { return isEnding; }));
}

std::string LiveLine::text() const {
    const Clock::time_point now = Clock::now();
    const Clock::time_point look = lastLook;
    const bool isMeasuring = now - look > longestLook;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(now - (isMeasuring ? look : begin)).count();
    return fmt::format("{}; {}, {} s", beginning, isMeasuring ? "measuring" : "waiting for the button", seconds);
}

/// Keeps the last column free: some terminals go to the next line once it is written to.
void LiveLine::show(std::string text) {
    text.resize(std::min(text.size(), terminalWidth().value_or(std::numeric_limits<std::size_t>::max()) - 1));
    if (text == shown) return;
    write("\r\x1b[K" + text);
    shown = std::move(text);
}

} // namespace spm

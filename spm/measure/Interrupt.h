#pragma once

namespace spm {

/// The person has ended the measuring.
class Interrupted {};

/// While an object of this lives, Ctrl-C and what else asks the program to end does not do so but is noted, so that the
/// instrument is closed and what was read is kept. The second time it ends all the same.
class InterruptGuard {
public:
    InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;
    ~InterruptGuard();

    /// @throws Interrupted  when Ctrl-C was noted
    static void check();

    /// Waits until standard input has something to read, or has ended.
    /// @throws Interrupted  when Ctrl-C was noted, before or while it waits
    static void waitForInput();
};

} // namespace spm

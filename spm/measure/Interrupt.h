#pragma once

namespace spm {

/// Thrown when the user stops the run.
class Interrupted {};

/// During its lifetime, Ctrl-C and other requests to end the program only set a flag, so that the instrument can be
/// closed and the readings saved. A second request ends the program.
class InterruptGuard {
public:
    InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;
    ~InterruptGuard();

    /// @throws Interrupted  if the flag is set
    static void check();

    /// Waits until standard input is readable or at its end.
    /// @throws Interrupted  if the flag is set, before or during the wait
    static void waitForInput();
};

} // namespace spm

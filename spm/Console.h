#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

// The terminal, the arguments and the signals of a console program. Each system has its own implementation.

namespace spm {

/// The program's arguments without its name, in UTF-8 on Windows and unchanged elsewhere.
std::vector<std::string> arguments(int argc, const char* const* argv);

bool isTerminal(std::FILE* stream);

/// The number of columns of the terminal on standard error; none if it is unknown.
std::optional<std::size_t> terminalWidth();

/// Installs a handler for the signals that ask the program to end: Ctrl-C, termination, hang-up. The handler is called
/// at most once per signal; a second one has its default effect. Ignored signals stay ignored. A caught signal ends
/// waitForInput, but doesn't interrupt reads and writes.
void catchSignals(void (*handler)(int));
/// Restores the handlers that catchSignals replaced.
void restoreSignals();

/// Waits until standard input is readable or at its end, or a caught signal arrives. Returns at once on systems where
/// a signal ends the read itself.
/// @param hasSignal  whether a signal has arrived; tested without a race between the test and the wait
void waitForInput(bool (*hasSignal)());

/// Enables UTF-8 and escape sequences on the console, and turns a write to a closed pipe into an error.
void prepareStreams();

/// Whether standard output is a terminal that shows colours. The environment variable NO_COLOR turns them off.
bool supportsColour();

} // namespace spm

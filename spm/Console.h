#pragma once

#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

// The terminal, the arguments and the signals of a console program. Each system has its own implementation.

namespace spm {

/// The program's arguments without its name, in UTF-8 on Windows and unchanged elsewhere.
std::vector<std::string> arguments(int argc, const char* const* argv);

/// Quotes an argument for the system's shell; one that needs no quotes is unchanged.
std::string quoted(const std::string& argument);

bool isTerminal(std::FILE* stream);

/// Installs a handler for the signals that ask the program to end: Ctrl-C, termination, hang-up. The handler is called
/// at most once per signal; a second one has its default effect. Ignored signals stay ignored. A caught signal doesn't
/// interrupt reads and writes.
void catchSignals(void (*handler)(int));

/// Waits until standard input is readable or at its end, but not longer than the limit. Always true on systems where a
/// signal ends the read itself.
bool hasInput(std::chrono::milliseconds limit);

/// Enables UTF-8 and escape sequences on the console, and turns a write to a closed pipe into an error.
void prepareStreams();

/// Whether standard output is a terminal that shows colours. The environment variable NO_COLOR turns them off.
bool supportsColour();

} // namespace spm

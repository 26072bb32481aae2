#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

// The terminal, the arguments and the signals of a console program; one source per system implements it.

namespace spm {

/// The program's arguments without its name, in UTF-8 where the system knows their characters.
std::vector<std::string> arguments(int argc, const char* const* argv);

/// Whether a stream is shown to a person.
bool isTerminal(std::FILE* stream);

/// How many columns the terminal on standard error has; none when that can't be found out.
std::optional<std::size_t> terminalWidth();

/// Has a function called, once for each signal, when the program is asked to end: by Ctrl-C, by the system, by a
/// terminal that is closed. What was ignored stays ignored; waitForInput ends, reads and writes go on.
void catchEnd(void (*handler)(int));
void releaseEnd();

/// Waits until standard input has something to read, or has ended, or one of the signals that catchEnd catches comes;
/// also one that comes just before the wait. Where a signal ends the read itself, it doesn't wait.
/// @param hasCome  whether such a signal has come
void waitForInput(bool (*hasCome)());

/// Makes the consoles of the standard streams show UTF-8 and escape sequences, where they do not by themselves, and
/// writing to a pipe that nobody reads an error.
void prepareStreams();

/// Whether the system's own console, without a variable that says so, shows all colours.
bool isColourConsole();

} // namespace spm

#pragma once

#include "loader/SharedLibrary.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

// What the host asks of the system; one source per system implements it.

namespace host {

/// The folder of the running program.
std::filesystem::path programFolder();

/// The program's arguments without its name, in UTF-8 where the system knows their characters.
std::vector<std::string> arguments(int argc, const char* const* argv);

/// Whether a stream is shown to a person.
bool isTerminal(std::FILE* stream);

/// Has a function called, once for each signal, when the program is asked to end: by Ctrl-C, by the system, by a
/// terminal that is closed. What was ignored stays ignored; a wait for input ends.
void catchEnd(void (*handler)(int));
void releaseEnd();

/// Makes the consoles of the standard streams show UTF-8 and escape sequences, where they do not by themselves, and
/// writing to a pipe that nobody reads an error.
void prepareStreams();

/// Whether the system's own console, without a variable that says so, shows all colours.
bool isColourConsole();

/// Where the module's settings are kept, for people.
std::string settingsPlace();

/// The address of a name that the vendor's library exports, which a module was loaded with; null for none.
void* findInSdk(const loader::SharedLibrary& module, const char* name);

/// The file names of the module and of the vendor's library on this system.
extern const char* const moduleFileName;
extern const char* const sdkFileName;

} // namespace host

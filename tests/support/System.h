#pragma once

// System functions for the tests. One source file per system implements them.

#include "platform/win32.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// The line ending of text files.
extern const std::string lineEnd;

extern const std::string programExtension;

/// Sets or removes an environment variable. A change of TZ takes effect at once.
void setVariable(const std::string& name, const std::optional<std::string>& value);

/// The files for a program's standard output and standard error.
struct Output {
    std::filesystem::path out;
    std::filesystem::path err;
};

/// Runs a program and returns its exit status.
/// @param arguments  in UTF-8, without single quotes
int run(const std::filesystem::path& program, const std::vector<std::string>& arguments, const Output& output);

/// The parts of run() that depend on the system: quoting a word for the command interpreter, and executing a command.
std::string quoted(const std::string& word);
int execute(const std::string& command);

/// The module's keys below SOFTWARE.
inline const std::string commonKey = "Kestrova\\SPM";
inline const std::string deviceKey = "Kestrova\\SPM\\xrite i1 Pro3";

/// The settings that module objects of this process read; initially none. They are private to the test: on Windows,
/// keys that replace HKEY_LOCAL_MACHINE in this process; elsewhere a settings file.
class Settings {
public:
    Settings();
    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;
    ~Settings();

    /// Sets a value in a key below SOFTWARE.
    /// @param data  the bytes to store; those of a text include the terminating NUL
    void set(const std::string& key, const std::string& name, std::uint32_t type, const std::string& data);

    /// Sets a number in the common key.
    void setNumber(const std::string& name, std::uint32_t number);

    /// Removes write access to the settings. On Linux, also drops this thread's root privileges for files.
    void denyWriting();

    /// Removes all settings and restores write access.
    void clear();

private:
    std::string place;
};

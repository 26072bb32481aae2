#pragma once

// What the tests ask of the system; one source per system implements it.

#include "platform/win32.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// How a line of a text file ends.
extern const std::string lineEnd;

extern const std::string programExtension;

/// Sets or removes an environment variable; a zone that it names holds at once.
void setVariable(const std::string& name, const std::optional<std::string>& value);

/// Where a program's output goes.
struct Output {
    std::filesystem::path out;
    std::filesystem::path err;
};

/// Runs a program, waits for its end and gives its exit status.
/// @param arguments  in UTF-8, without single quotes
int run(const std::filesystem::path& program, const std::vector<std::string>& arguments, const Output& output);

/// What of this is the system's own: a word for its command interpreter, and having that execute a command.
std::string quoted(const std::string& word);
int execute(const std::string& command);

/// Writes a library file with a version resource.
void writeLibrary(const std::filesystem::path& path, const std::string& resource);

/// The module's keys below SOFTWARE.
inline const std::string commonKey = "Kestrova\\SPM";
inline const std::string deviceKey = "Kestrova\\SPM\\xrite i1 Pro3";

/// The settings that module objects of this process read, at first none. They are the test's own: on Windows, keys that
/// take the place of HKEY_LOCAL_MACHINE in this process; elsewhere a settings file.
class Settings {
public:
    Settings();
    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;
    ~Settings();

    /// Sets a value in a key below SOFTWARE; the data as stored, a text with its NUL.
    void set(const std::string& key, const std::string& name, std::uint32_t type, const std::string& data);

    /// Sets a number in the common key.
    void setNumber(const std::string& name, std::uint32_t number);
    /// Sets a text in the device key.
    void setText(const std::string& name, const std::string& text);

    /// Takes away the right to write; on Linux, from this thread also root's rights to all files.
    void denyWriting();

    /// Back to no settings, with the right to write.
    void clear();

private:
    std::string place;
};

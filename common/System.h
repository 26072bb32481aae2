#pragma once

// What the programs and the stand-ins ask of the system; one source per system implements it.

#include <cstdio>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

namespace common {

/// The file names of the module and of the vendor's library on this system.
extern const char* const moduleFileName;
extern const char* const sdkFileName;

/// Why a library can't be loaded: its path and the reason.
class LoadError : public std::runtime_error {
public:
    explicit LoadError(const std::string& text, std::string whatToDo = "")
        : std::runtime_error(text), advice(std::move(whatToDo)) {}

    /// What to do; empty when only the system's reason is known.
    std::string advice;
};

/// The library is for another kind of processor. The system's loader passes it over where it looks for one by name.
class ForeignLibrary : public LoadError {
public:
    using LoadError::LoadError;
};

/// Looks at a library's headers without loading it: a file that is cut short can end the program that loads it.
/// @throws LoadError  when it can't be loaded
void requireLibrary(const std::filesystem::path& path);

/// The vendor's library with which the system would load a module: the one beside it, unless the environment names
/// another one.
std::filesystem::path sdkOf(const std::filesystem::path& module);

/// Whether Windows' functions for single-byte texts, by which a module finds its own file, can express a path: the
/// characters of its code page, fewer than 260.
bool hasSingleByteForm(const std::filesystem::path& path);

/// A library loaded at run time, for the object's life.
class SharedLibrary {
public:
    /// @throws LoadError
    explicit SharedLibrary(const std::filesystem::path& path);
    SharedLibrary(const SharedLibrary&) = delete;
    SharedLibrary& operator=(const SharedLibrary&) = delete;
    ~SharedLibrary();

    /// The address of an exported name, null for none. On Linux also of a name in the libraries that this one needs.
    void* find(const char* name) const;

    /// The address of a name that the vendor's library exports, if this is a module that was loaded with it; null for
    /// none.
    void* findInSdk(const char* name) const;

private:
    void* library = nullptr;
};

/// The handle, as the system's functions take it, of the loaded library or program that an address is in; null when it
/// is in none.
void* libraryOf(const void* address);

/// The file of the loaded library or program that an address is in; empty when it is in none.
std::filesystem::path fileOf(const void* address);

/// Throws as a library that Visual C++ built does: on Windows, where compilers have exceptions of their own, past all
/// of this compiler's handlers and destructors; elsewhere a std::runtime_error.
[[noreturn]] void throwForeign(const std::string& what);

/// The folder of the running program.
std::filesystem::path programFolder();

/// The file that an environment variable names; none when it is unset or empty.
std::optional<std::filesystem::path> fileOfEnvironment(const char* variable);

/// Whether there is a file or folder, even one that this user may not look at.
bool doesExist(const std::filesystem::path& path);

/// The whole content of a file.
/// @throws std::system_error  with the system's reason, also for a folder
std::string readFile(const std::filesystem::path& path);

/// Creates a file and opens it for writing; null, and errno is set, when that can't be done or there is one already.
std::FILE* createFile(const std::filesystem::path& path);

} // namespace common

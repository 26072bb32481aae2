#pragma once

// System functions for spm and the stand-ins of the vendor's library. One source file per system implements them.

#include <cstdio>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

namespace common {

/// The file names of the module and of the vendor's library on this system.
extern const char* const moduleFileName;
extern const char* const sdkFileName;

/// A failure to load a library: its path and the system's error message.
class LoadError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Why a library can't be loaded, and what the user can do.
struct LibraryFault {
    std::string text;
    std::string advice;
};

/// Examines a library's file without loading it: loading a truncated library can crash the process.
/// @return nullopt if the file looks loadable; also if it doesn't exist, since loading it reports that
std::optional<LibraryFault> findFault(const std::filesystem::path& library);

/// Returns the vendor's library that the system would load with a module: the one beside the module, unless
/// LD_LIBRARY_PATH (on Linux) has another.
std::filesystem::path sdkOf(const std::filesystem::path& module);

/// A library loaded at run time; unloaded by the destructor.
class SharedLibrary {
public:
    /// @throws LoadError  if the library can't be loaded
    explicit SharedLibrary(const std::filesystem::path& path);
    SharedLibrary(const SharedLibrary&) = delete;
    SharedLibrary& operator=(const SharedLibrary&) = delete;
    ~SharedLibrary();

    /// Returns the address of an exported symbol; null if there is none. On Linux, also finds symbols of the libraries
    /// that this one depends on.
    void* find(const char* name) const;

    /// Returns the address of a symbol of the vendor's library that was loaded with this module; null if there is none.
    void* findInSdk(const char* name) const;

private:
    void* library = nullptr;
};

/// Returns the base address of the loaded library or program that contains an address; null if none does.
void* libraryOf(const void* address);

/// Returns the file of the loaded library or program that contains an address; empty if none does.
std::filesystem::path fileOf(const void* address);

/// Throws an exception as a library built with Visual C++ would. On Windows, where compilers' exceptions differ, this
/// compiler's handlers and destructors don't see it; elsewhere it is a std::runtime_error.
[[noreturn]] void throwForeign(const std::string& what);

/// Returns the folder of the running program.
std::filesystem::path programFolder();

/// Returns the path in an environment variable; nullopt if the variable is not set or empty.
std::optional<std::filesystem::path> pathFromEnvironment(const char* variable);

/// Returns the whole content of a file.
/// @throws std::system_error  with the system's error; also if the path is a folder
std::string readFile(const std::filesystem::path& path);

/// Creates a file and opens it for writing.
/// @param mode  "w" to write the system's line endings, or "wb"
/// @return null, with errno set, on failure; also if the path exists, even as a dangling link
std::FILE* createFile(const std::filesystem::path& path, const char* mode);

/// Whether two file names are equal by the system's rules.
bool isSameFileName(const std::filesystem::path& left, const std::filesystem::path& right);

} // namespace common

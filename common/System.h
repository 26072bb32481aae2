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

/// Why a library could not be loaded: its path and the system's reason.
class LoadError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Why a library can't be loaded, as its file tells without being loaded: one that is cut short can end the program
/// that loads it.
struct LibraryFault {
    std::string text;
    /// What to do.
    std::string advice;
};

/// None for a file that is missing, too, which loading it tells.
std::optional<LibraryFault> findFault(const std::filesystem::path& library);

/// The vendor's library that the system would load with a module: the one beside it, unless the environment names
/// another.
std::filesystem::path sdkOf(const std::filesystem::path& module);

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

/// The loaded library or program that an address is in, as the system's functions take it; null when it is in none.
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

/// The whole content of a file.
/// @throws std::system_error  with the system's reason, also for a folder
std::string readFile(const std::filesystem::path& path);

/// Creates a file and opens it for writing; null, and errno is set, when that can't be done or there is one already,
/// be it a link that leads nowhere.
/// @param mode  "w", for lines that end as the system's do, or "wb"
std::FILE* createFile(const std::filesystem::path& path, const char* mode);

/// Whether two names in one folder are the same to the system.
bool isSameName(const std::filesystem::path& one, const std::filesystem::path& other);

} // namespace common

#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

namespace common {

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

} // namespace common

#pragma once

#include <filesystem>

namespace common {

/// Checks that a library's file isn't truncated. On Linux, loading such a file can end the program with a signal; on
/// Windows, the system reports it.
/// @throws Error
void requireComplete(const std::filesystem::path& library);

/// A library loaded at run time; unloaded by the destructor.
class SharedLibrary {
public:
    /// @throws Error  with the system's error message, if the library can't be loaded
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

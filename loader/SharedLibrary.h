#pragma once

#include <filesystem>
#include <stdexcept>

namespace loader {

/// Why a library could not be loaded: its path and the system's reason.
class LoadError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

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

private:
    void* library = nullptr;
};

/// The file of the loaded library or program that an address is in; empty when it is in none.
std::filesystem::path fileOf(const void* address);

} // namespace loader

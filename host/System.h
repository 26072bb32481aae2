#pragma once

#include <cstdio>
#include <filesystem>

// What the host asks of the system; one source per system implements it.

namespace host {

/// The folder of the running program.
std::filesystem::path programFolder();

/// Whether a stream is shown to a person.
bool isTerminal(std::FILE* stream);

/// A library loaded at run time, for the object's life.
class SharedLibrary {
public:
    /// @throws HostError  with the path and the system's reason
    explicit SharedLibrary(const std::filesystem::path& path);
    SharedLibrary(const SharedLibrary&) = delete;
    SharedLibrary& operator=(const SharedLibrary&) = delete;
    ~SharedLibrary();

    /// The address of an exported name, null for none.
    void* find(const char* name) const;

    /// The address of a name that the vendor's library exports, which this library was loaded with; null for none.
    void* findInSdk(const char* name) const;

private:
    void* library = nullptr;
};

/// The file names of the module and of the vendor's library on this system.
extern const char* const moduleFileName;
extern const char* const sdkFileName;

} // namespace host

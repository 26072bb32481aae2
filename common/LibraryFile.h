#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace common {

/// A library's file, whose headers are read without loading it. Whatever is wrong is thrown as a LoadError.
class LibraryFile {
public:
    explicit LibraryFile(const std::filesystem::path& file);

    template <class Record>
    Record read(std::uint64_t offset) {
        Record record{};
        readBytes(offset, reinterpret_cast<char*>(&record), sizeof record);
        return record;
    }

    /// A part that the headers name must lie inside the file.
    void requireInside(std::uint64_t offset, std::uint64_t length) const;
    /// @param isLibrary  whether the file has the marks of a library of this system
    void requireLibrary(bool isLibrary) const;
    /// @param isNative  whether the library is for the processor that this program is for
    void requireNative(bool isNative) const;

private:
    void readBytes(std::uint64_t offset, char* target, std::size_t length);

    std::string name;
    std::ifstream stream;
    std::uint64_t size = 0;
};

} // namespace common

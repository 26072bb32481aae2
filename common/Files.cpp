#include "common/LibraryFile.h"
#include "common/System.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <system_error>

namespace common {

std::string readFile(const std::filesystem::path& path) try {
    std::ifstream file;
    file.exceptions(std::ios::badbit | std::ios::failbit);
    file.open(path, std::ios::binary);
    std::string content;
    std::array<char, 0x10000> part; // not initialized: only the bytes read are used
    while (const std::streamsize length = file.rdbuf()->sgetn(part.data(), part.size())) {
        content.append(part.data(), static_cast<std::size_t>(length));
    }
    return content;
} catch (const std::ios::failure&) { // from open, or from reading: a folder can be opened
    throw std::system_error(errno, std::generic_category(), path.string());
}

std::optional<LibraryFault> findFault(const std::filesystem::path& library) try {
    const std::string file = readFile(library);
    switch (findHeaderDefect(file)) {
    case LibraryDefect::notALibrary:
        return LibraryFault{library.string() + ": it is not a library for this system",
                            "replace it with the right file"};
    case LibraryDefect::wrongArchitecture:
        return LibraryFault{library.string() + ": it is a 32-bit library, or one for another processor",
                            "replace it with the 64-bit library for the processor of this program"};
    case LibraryDefect::truncated:
        return LibraryFault{library.string() + ": it is truncated to " + std::to_string(file.size()) + " bytes",
                            "copy or install it again"};
    default:
        return std::nullopt;
    }
} catch (const std::system_error& error) {
    if (error.code() == std::errc::no_such_file_or_directory) return std::nullopt;
    return LibraryFault{library.string() + ": it can't be read: " + error.code().message(),
                        "put the library file there, with read permission for this user"};
}

} // namespace common

#include "common/LibraryFile.h"

#include "common/System.h"

#include <cerrno>

namespace common {

LibraryFile::LibraryFile(const std::filesystem::path& file) : name(file.string()) {
    std::error_code ignored;
    if (std::filesystem::is_directory(file, ignored)) {
        throw LoadError(name + ": it is not a regular file", "replace it with the library's file");
    }
    stream.open(file, std::ios::binary | std::ios::ate);
    if (!stream) {
        throw LoadError(name + ": it can't be read: " + std::generic_category().message(errno),
                        "give this user the right to read it, and to enter its folder");
    }
    size = static_cast<std::uint64_t>(stream.tellg());
}

void LibraryFile::requireInside(std::uint64_t offset, std::uint64_t length) const {
    if (offset <= size && length <= size - offset) return;
    throw LoadError(name + ": it is cut short, and has only " + std::to_string(size) + " bytes",
                    "copy or install it again");
}

void LibraryFile::requireLibrary(bool isLibrary) const {
    if (!isLibrary) throw LoadError(name + ": it is not a library of this system", "replace it with the right file");
}

void LibraryFile::requireNative(bool isNative) const {
    if (isNative) return;
    throw ForeignLibrary(name + ": it is a library for another kind of processor, or of 32 bits",
                         "replace it with the 64-bit library for the processor that this program is for");
}

void LibraryFile::readBytes(std::uint64_t offset, char* target, std::size_t length) {
    requireInside(offset, length);
    stream.seekg(static_cast<std::streamoff>(offset));
    stream.read(target, static_cast<std::streamsize>(length));
}

} // namespace common

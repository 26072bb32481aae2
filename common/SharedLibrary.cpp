#include "common/SharedLibrary.h"

#include "common/Files.h"
#include "common/LibraryFile.h"

#include <system_error>

namespace common {

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

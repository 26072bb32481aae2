#include "common/Files.h"

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

} // namespace common

#include "common/Files.h"

#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

namespace common {

std::string readFile(const std::filesystem::path& path) try {
    std::ifstream file;
    file.exceptions(std::ios::failbit);
    file.open(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
} catch (const std::ios::failure&) { // from open, or from reading: a folder can be opened
    throw std::system_error(errno, std::generic_category(), path.string());
}

} // namespace common

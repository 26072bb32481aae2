#include "common/System.h"

#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

namespace common {

bool doesExist(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::status(path, ignored).type() != std::filesystem::file_type::not_found;
}

std::string readFile(const std::filesystem::path& path) try {
    std::ifstream file;
    file.exceptions(std::ios::badbit | std::ios::failbit);
    file.open(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
} catch (const std::ios::failure&) { // a folder can be opened, too, but not be read
    throw std::system_error(errno, std::generic_category(), path.string());
}

} // namespace common

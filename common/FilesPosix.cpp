#include "common/Files.h"

namespace common {

std::FILE* createFile(const std::filesystem::path& path, const char* mode) {
    return std::fopen(path.c_str(), (std::string(mode) + "xe").c_str());
}

bool isSameFileName(const std::filesystem::path& left, const std::filesystem::path& right) {
    return left == right;
}

} // namespace common

#include "common/Files.h"

namespace common {

std::FILE* createFile(const std::filesystem::path& path, const char* mode) {
    return std::fopen(path.c_str(), (std::string(mode) + "xe").c_str());
}

} // namespace common

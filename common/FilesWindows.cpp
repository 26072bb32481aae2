#include "common/Files.h"

#include <fcntl.h>
#include <io.h>
#include <string_view>
#include <sys/stat.h>

namespace common {

std::FILE* createFile(const std::filesystem::path& path, const char* mode) {
    const int translation = std::string_view(mode).ends_with('b') ? _O_BINARY : _O_TEXT;
    const int file =
        _wopen(path.c_str(), _O_CREAT | _O_EXCL | _O_WRONLY | _O_NOINHERIT | translation, _S_IREAD | _S_IWRITE);
    return file >= 0 ? _fdopen(file, mode) : nullptr;
}

} // namespace common

#include "common/Files.h"
#include "platform/win32.h"

#include <fcntl.h>
#include <io.h>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace common {

std::FILE* createFile(const std::filesystem::path& path, const char* mode) {
    const int translation = std::string_view(mode).ends_with('b') ? _O_BINARY : _O_TEXT;
    const int file =
        _wopen(path.c_str(), _O_CREAT | _O_EXCL | _O_WRONLY | _O_NOINHERIT | translation, _S_IREAD | _S_IWRITE);
    return file >= 0 ? _fdopen(file, mode) : nullptr;
}

// Windows ignores case, and dots and spaces at the end of a name.
bool isSameFileName(const std::filesystem::path& left, const std::filesystem::path& right) {
    const auto stripped = [](const std::filesystem::path& name) {
        const std::wstring& text = name.native();
        return text.substr(0, text.find_last_not_of(L". ") + 1);
    };
    return CompareStringOrdinal(stripped(left).c_str(), -1, stripped(right).c_str(), -1, TRUE) == CSTR_EQUAL;
}

} // namespace common

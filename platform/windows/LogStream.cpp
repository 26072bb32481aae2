// Windows appends each write atomically to a file that is open with FILE_APPEND_DATA but not FILE_WRITE_DATA.

#include "platform/LogStream.h"

#include "platform/win32.h"

#include <cstdint>
#include <fcntl.h>
#include <string_view>

std::FILE* openLogStream(const char* path, const char* mode) {
    const std::string_view wanted(mode);
    if (wanted != "a" && wanted != "w") return std::fopen(path, mode);
    const HANDLE file = CreateFileA(path, FILE_APPEND_DATA | SYNCHRONIZE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    wanted == "w" ? CREATE_ALWAYS : OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return nullptr;
    const int descriptor = _open_osfhandle(reinterpret_cast<std::intptr_t>(file), _O_TEXT | _O_NOINHERIT);
    if (descriptor < 0) CloseHandle(file);
    std::FILE* const stream = descriptor >= 0 ? _fdopen(descriptor, mode) : nullptr;
    if (descriptor >= 0 && stream == nullptr) _close(descriptor);
    return stream;
}

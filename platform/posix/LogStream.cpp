// In the mode "a", the system appends each write atomically (O_APPEND). Without a buffer, each text is one write, and
// one that can't be written is not kept for later.

#include "platform/LogStream.h"

#include <filesystem>
#include <string>
#include <system_error>

std::FILE* openLogStream(const char* path, const char* mode) {
    std::error_code ignored;
    if (std::filesystem::is_fifo(path, ignored)) return nullptr;
    std::FILE* const stream = std::fopen(path, (mode + std::string("e")).c_str()); // "e": O_CLOEXEC
    if (stream != nullptr) std::setvbuf(stream, nullptr, _IONBF, 0);
    return stream;
}

// With O_APPEND, the system appends each write atomically, so no lock is needed.

#include "platform/LogStream.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool isRegularFile(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

} // namespace

std::FILE* openLogStream(const char* path, const char* mode) {
    const int flags = O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY | O_NONBLOCK | (*mode == 'w' ? O_TRUNC : 0);
    int descriptor = open(path, O_RDWR | flags, 0666);
    if (descriptor < 0) descriptor = open(path, O_WRONLY | flags, 0666);
    if (descriptor < 0) return nullptr;
    std::FILE* const stream = isRegularFile(descriptor) ? fdopen(descriptor, mode) : nullptr;
    if (stream == nullptr) close(descriptor);
    return stream;
}

Written appendText(std::FILE* stream, std::string_view text) {
    const ssize_t written = write(fileno(stream), text.data(), text.size());
    if (written <= 0) return Written::nothing;
    return static_cast<std::size_t>(written) < text.size() ? Written::part : Written::all;
}

bool endsWithIncompleteLine(std::FILE* stream) {
    const int descriptor = fileno(stream);
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || status.st_size == 0) return false;
    // st_size may include only part of a line that another process is writing right now. lseek waits for that write to
    // finish, and SEEK_HOLE finds the end of the file: the implicit hole behind its last byte.
    const off_t end = lseek(descriptor, status.st_size - 1, SEEK_HOLE);
    char last = '\n';
    return end > 0 && pread(descriptor, &last, 1, end - 1) == 1 && last != '\n';
}

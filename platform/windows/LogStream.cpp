// Windows appends each write atomically to a file that is open with FILE_APPEND_DATA but not FILE_WRITE_DATA. Wine
// finds the end and writes in two steps, so writers also take a lock, on a byte far beyond the end so that readers
// aren't affected. Any process that can read the file can hold that lock forever; after a limit, lines are written
// without it.

#include "platform/LogStream.h"

#include "platform/win32.h"

#include <chrono>
#include <fcntl.h>
#include <string>
#include <thread>
#include <utility>

namespace {

HANDLE handleOf(std::FILE* stream) {
    return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
}

LONGLONG sizeOf(HANDLE file) {
    LARGE_INTEGER size{};
    return GetFileSizeEx(file, &size) != FALSE ? size.QuadPart : 0;
}

/// Excludes other writers for the object's lifetime: always those of this process, those of other processes unless the
/// lock can't be acquired in time. While the file grows, the lock is in use by writers and worth waiting for; while it
/// doesn't, the wait ends after a few attempts.
class WriteLock {
public:
    explicit WriteLock(std::FILE* stream) : file(handleOf(stream)) {
        lockedByte.OffsetHigh = 0x7FFFFFFF;
        AcquireSRWLockExclusive(&processLock);
        LONGLONG size = sizeOf(file);
        for (int tries = 0, idleTries = 0; tries < 200 && idleTries < 10 && !tryLock(); ++tries, ++idleTries) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            const LONGLONG earlier = std::exchange(size, sizeOf(file));
            if (size != earlier) idleTries = 0;
        }
    }
    WriteLock(const WriteLock&) = delete;
    WriteLock& operator=(const WriteLock&) = delete;
    ~WriteLock() {
        if (isHeld) UnlockFileEx(file, 0, 1, 0, &lockedByte);
        ReleaseSRWLockExclusive(&processLock);
    }

private:
    bool tryLock() {
        constexpr DWORD flags = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
        isHeld = LockFileEx(file, flags, 0, 1, 0, &lockedByte) != FALSE;
        return isHeld;
    }

    static SRWLOCK processLock;

    HANDLE file;
    OVERLAPPED lockedByte{};
    bool isHeld = false;
};

SRWLOCK WriteLock::processLock = SRWLOCK_INIT;

std::string withSystemLineEndings(std::string_view text) {
    std::string converted;
    converted.reserve(text.size() + 8);
    for (const char character : text) {
        if (character == '\n') converted += '\r';
        converted += character;
    }
    return converted;
}

HANDLE openFile(const char* path, DWORD access, bool truncate) {
    return CreateFileA(path, access | SYNCHRONIZE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                       truncate ? CREATE_ALWAYS : OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

} // namespace

std::FILE* openLogStream(const char* path, const char* mode) {
    HANDLE file = openFile(path, FILE_APPEND_DATA | FILE_READ_DATA, *mode == 'w');
    if (file == INVALID_HANDLE_VALUE) file = openFile(path, FILE_APPEND_DATA, *mode == 'w');
    if (file == INVALID_HANDLE_VALUE) return nullptr;
    const bool isRegularFile = GetFileType(file) == FILE_TYPE_DISK;
    const int descriptor = isRegularFile ? _open_osfhandle(reinterpret_cast<std::intptr_t>(file), _O_APPEND) : -1;
    if (descriptor < 0) CloseHandle(file);
    std::FILE* const stream = descriptor < 0 ? nullptr : _fdopen(descriptor, mode);
    if (descriptor >= 0 && stream == nullptr) _close(descriptor);
    return stream;
}

Written appendText(std::FILE* stream, std::string_view text) {
    const std::string converted = withSystemLineEndings(text);
    const WriteLock lock(stream);
    DWORD written = 0;
    WriteFile(handleOf(stream), converted.data(), static_cast<DWORD>(converted.size()), &written, nullptr);
    if (written == 0) return Written::nothing;
    return written < converted.size() ? Written::part : Written::all;
}

bool endsWithIncompleteLine(std::FILE* stream) {
    const WriteLock lock(stream);
    const LONGLONG size = sizeOf(handleOf(stream));
    if (size == 0) return false;
    OVERLAPPED position{};
    position.Offset = static_cast<DWORD>(size - 1);
    position.OffsetHigh = static_cast<DWORD>((size - 1) >> 32);
    char last = '\n';
    DWORD length = 0;
    ReadFile(handleOf(stream), &last, 1, &length, &position);
    return last != '\n';
}

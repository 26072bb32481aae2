// The registry functions over a settings file. The file is the whole state: every call opens it, locks it against
// other processes and threads, and reads it anew, so that any number of them may use it and edit it by hand.

#include "platform/posix/RegistryFile.h"
#include "platform/posix/RegistryText.h"
#include "platform/posix/win32.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

struct HKEY__ {
    static constexpr std::uint32_t openMark = 0x59454B4F;

    std::uint32_t mark = openMark;
    std::string path;
};

namespace {

constexpr std::string_view softwarePath = "HKEY_LOCAL_MACHINE\\SOFTWARE";

/// The settings file, locked while this object lives.
class StoreFile {
public:
    /// @param flags  for open(2)
    /// @param lock   LOCK_SH or LOCK_EX
    StoreFile(int flags, int lock) : descriptor(open(registry::storePath(), flags | O_CLOEXEC, 0644)) {
        if (descriptor < 0) return;
        while (flock(descriptor, lock) != 0 && errno == EINTR) {
        }
    }
    StoreFile(const StoreFile&) = delete;
    StoreFile& operator=(const StoreFile&) = delete;
    ~StoreFile() {
        if (descriptor >= 0) close(descriptor);
    }

    bool isOpen() const { return descriptor >= 0; }

    /// The whole file; none when it can't be read.
    std::optional<std::string> read() const {
        std::string text;
        std::array<char, 4096> part{};
        for (;;) {
            const ssize_t length = pread(descriptor, part.data(), part.size(), static_cast<off_t>(text.size()));
            if (length < 0) return std::nullopt;
            if (length == 0) return text;
            text.append(part.data(), static_cast<std::size_t>(length));
        }
    }

    /// Appends all of it or nothing.
    bool append(const std::string& addition) const {
        const off_t end = lseek(descriptor, 0, SEEK_END);
        const ssize_t written = pwrite(descriptor, addition.data(), addition.size(), end);
        if (written == static_cast<ssize_t>(addition.size())) return true;
        static_cast<void>(ftruncate(descriptor, end) == 0);
        return false;
    }

private:
    int descriptor;
};

std::string storeText() {
    const StoreFile file(O_RDONLY, LOCK_SH);
    return file.isOpen() ? file.read().value_or("") : std::string();
}

LSTATUS readStore(const StoreFile& file, std::string& text) {
    if (!file.isOpen()) return ERROR_ACCESS_DENIED;
    std::optional<std::string> content = file.read();
    if (!content) return ERROR_READ_FAULT;
    text = std::move(*content);
    return registry::isStore(text) ? ERROR_SUCCESS : ERROR_BADDB;
}

bool isPredefined(HKEY key) {
    const auto number = reinterpret_cast<std::uintptr_t>(key);
    return number >= 0x80000000 && number <= 0x8000FFFF;
}

/// The full path of an open key; empty for a handle that is none.
std::string_view pathOf(HKEY key) {
    if (key == HKEY_LOCAL_MACHINE) return "HKEY_LOCAL_MACHINE";
    if (key == nullptr || isPredefined(key) || key->mark != HKEY__::openMark) return {};
    return key->path;
}

std::string pathBelow(std::string_view parent, const char* path) {
    return std::string(parent) + '\\' + path;
}

LSTATUS hold(std::string path, HKEY* key) {
    *key = std::make_unique<HKEY__>(HKEY__{HKEY__::openMark, std::move(path)}).release();
    return ERROR_SUCCESS;
}

} // namespace

const char* registry::storePath() {
    const char* path = std::getenv("SPM_REGISTRY");
    return path != nullptr && *path != '\0' ? path : "/etc/kestrova/registry.reg";
}

LSTATUS RegOpenKeyExA(HKEY parent, const char* path, DWORD /*options*/, REGSAM /*access*/, HKEY* key) {
    const std::string_view parentPath = pathOf(parent);
    if (parentPath.empty()) return ERROR_INVALID_HANDLE;
    const StoreFile file(O_RDWR | O_CREAT, LOCK_SH);
    std::string text;
    if (const LSTATUS status = readStore(file, text)) return status;
    std::string fullPath = pathBelow(parentPath, path);
    if (!registry::isWithin(softwarePath, fullPath) && !registry::hasKey(text, fullPath)) return ERROR_FILE_NOT_FOUND;
    return hold(std::move(fullPath), key);
}

LSTATUS RegCreateKeyA(HKEY parent, const char* path, HKEY* key) {
    const std::string_view parentPath = pathOf(parent);
    if (parentPath.empty()) return ERROR_INVALID_HANDLE;
    if (!registry::isWithin(parentPath, softwarePath)) return ERROR_ACCESS_DENIED;
    const StoreFile file(O_RDWR | O_CREAT, LOCK_EX);
    std::string text;
    if (const LSTATUS status = readStore(file, text)) return status;
    std::string fullPath = pathBelow(parentPath, path);
    const std::string headings = registry::missingHeadings(text, softwarePath, fullPath);
    if (!headings.empty() && !file.append(headings)) return ERROR_DISK_FULL;
    return hold(std::move(fullPath), key);
}

// NOLINTNEXTLINE(readability-non-const-parameter): the system's signature
LSTATUS RegQueryValueExA(HKEY key, const char* name, DWORD* reserved, DWORD* type, LPBYTE data, DWORD* size) {
    const std::string_view path = pathOf(key);
    if (path.empty()) return ERROR_INVALID_HANDLE;
    if (reserved != nullptr || (data != nullptr && size == nullptr)) return ERROR_INVALID_PARAMETER;
    const std::optional<registry::Value> value = registry::findValue(storeText(), path, name);
    if (!value) return ERROR_FILE_NOT_FOUND;
    const DWORD room = size != nullptr ? *size : 0;
    if (type != nullptr) *type = value->type;
    if (size != nullptr) *size = static_cast<DWORD>(value->data.size());
    if (data == nullptr) return ERROR_SUCCESS;
    if (room < value->data.size()) return ERROR_MORE_DATA;
    std::copy(value->data.begin(), value->data.end(), data);
    return ERROR_SUCCESS;
}

LSTATUS RegCloseKey(HKEY key) {
    if (key == HKEY_LOCAL_MACHINE) return ERROR_SUCCESS;
    if (pathOf(key).empty()) return ERROR_INVALID_HANDLE;
    key->mark = 0;
    delete key;
    return ERROR_SUCCESS;
}

// The registry functions, implemented on a settings file. Every call opens and reads the file again and nothing is
// cached, so that several processes and threads can use the file while a user edits it.

#include "platform/posix/RegistryText.h"
#include "platform/posix/win32.h"
#include "platform/RegistryPlace.h"

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

/// An open key. The mark helps to detect handles that are invalid or already closed.
struct HKEY__ {
    static constexpr std::uint32_t openMark = 0x59454B4F;

    std::uint32_t mark = openMark;
    std::string path;
};

namespace {

constexpr std::string_view softwarePath = "HKEY_LOCAL_MACHINE\\SOFTWARE";

/// The settings file. No operation blocks: any process that can read the file can hold its lock forever, and the path
/// may name a pipe.
class SettingsFile {
public:
    /// Opens the file if it is a regular file.
    /// @param flags  for open(2)
    explicit SettingsFile(int flags)
        : descriptor(open(registryPlace(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0644)) {
        struct stat status {};
        if (descriptor < 0 || (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode))) return;
        close(descriptor);
        descriptor = -1;
    }
    SettingsFile(const SettingsFile&) = delete;
    SettingsFile& operator=(const SettingsFile&) = delete;
    ~SettingsFile() {
        if (descriptor >= 0) close(descriptor);
    }

    bool isOpen() const { return descriptor >= 0; }

    /// Locks the file against the creation of keys by other threads and processes, until this object is destroyed.
    /// @return false if another one holds the lock
    [[nodiscard]] bool tryLock() const { return flock(descriptor, LOCK_EX | LOCK_NB) == 0; }

    /// Returns a consistent snapshot of the file. An editor that writes the file in place takes no lock, so the file is
    /// read until two reads give the same text. Returns nullopt if it can't be read or keeps changing.
    std::optional<std::string> read() const {
        constexpr int attempts = 10;
        std::optional<std::string> text = readOnce();
        for (int i = 0; text && i < attempts; ++i) {
            std::optional<std::string> again = readOnce();
            if (again == text) return text;
            text = std::move(again);
        }
        return std::nullopt;
    }

    /// Appends a text completely or not at all.
    [[nodiscard]] bool append(const std::string& addition) const {
        const off_t end = lseek(descriptor, 0, SEEK_END);
        const ssize_t written = pwrite(descriptor, addition.data(), addition.size(), end);
        if (written == static_cast<ssize_t>(addition.size())) return true;
        static_cast<void>(ftruncate(descriptor, end) == 0);
        return false;
    }

private:
    std::optional<std::string> readOnce() const {
        std::string text;
        std::array<char, 4096> part; // not initialized: only the bytes read are used
        for (;;) {
            const ssize_t length = pread(descriptor, part.data(), part.size(), static_cast<off_t>(text.size()));
            if (length < 0) return std::nullopt;
            if (length == 0) return text;
            text.append(part.data(), static_cast<std::size_t>(length));
        }
    }

    int descriptor;
};

LSTATUS readSettings(const SettingsFile& file, std::string& text) {
    if (!file.isOpen()) return ERROR_ACCESS_DENIED;
    std::optional<std::string> content = file.read();
    if (!content) return ERROR_READ_FAULT;
    text = std::move(*content);
    return registry::isSettingsText(text) ? ERROR_SUCCESS : ERROR_BADDB;
}

/// Appends the missing headings of a key. Reads the file again once it is locked: another process may just have created
/// the key.
LSTATUS createKey(const SettingsFile& file, const std::string& path) {
    if (!file.tryLock()) return ERROR_SHARING_VIOLATION;
    std::string text;
    if (const LSTATUS status = readSettings(file, text)) return status;
    const std::string headings = registry::missingHeadings(text, softwarePath, path);
    return headings.empty() || file.append(headings) ? ERROR_SUCCESS : ERROR_DISK_FULL;
}

bool isPredefined(HKEY key) {
    const auto number = reinterpret_cast<std::uintptr_t>(key);
    return number >= 0x80000000 && number <= 0x8000FFFF;
}

/// Returns the full path of an open key; empty for an invalid handle.
std::string_view pathOf(HKEY key) {
    if (key == HKEY_LOCAL_MACHINE) return "HKEY_LOCAL_MACHINE";
    if (key == nullptr || isPredefined(key) || key->mark != HKEY__::openMark) return {};
    return key->path;
}

std::string pathBelow(std::string_view parent, const char* path) {
    return std::string(parent) + '\\' + path;
}

LSTATUS openKey(std::string path, HKEY* key) {
    *key = std::make_unique<HKEY__>(HKEY__{HKEY__::openMark, std::move(path)}).release();
    return ERROR_SUCCESS;
}

} // namespace

const char* registryPlace() {
    const char* path = std::getenv("SPM_REGISTRY");
    return path != nullptr && *path != '\0' ? path : "/etc/kestrova/registry.reg";
}

LSTATUS RegOpenKeyExA(HKEY parent, const char* path, DWORD /*options*/, REGSAM /*access*/, HKEY* key) {
    const std::string_view parentPath = pathOf(parent);
    if (parentPath.empty()) return ERROR_INVALID_HANDLE;
    const SettingsFile file(O_RDWR | O_CREAT);
    std::string text;
    if (const LSTATUS status = readSettings(file, text)) return status;
    std::string fullPath = pathBelow(parentPath, path);
    // SOFTWARE exists even if the file has no heading for it.
    if (!registry::isSameOrBelow(softwarePath, fullPath) && !registry::hasKey(text, fullPath))
        return ERROR_FILE_NOT_FOUND;
    return openKey(std::move(fullPath), key);
}

LSTATUS RegCreateKeyA(HKEY parent, const char* path, HKEY* key) {
    const std::string_view parentPath = pathOf(parent);
    if (parentPath.empty()) return ERROR_INVALID_HANDLE;
    if (!registry::isSameOrBelow(parentPath, softwarePath)) return ERROR_ACCESS_DENIED;
    const SettingsFile file(O_RDWR | O_CREAT);
    std::string text;
    if (const LSTATUS status = readSettings(file, text)) return status;
    std::string fullPath = pathBelow(parentPath, path);
    if (!registry::hasKey(text, fullPath)) {
        if (const LSTATUS status = createKey(file, fullPath)) return status;
    }
    return openKey(std::move(fullPath), key);
}

// NOLINTNEXTLINE(readability-non-const-parameter): the system's signature
LSTATUS RegQueryValueExA(HKEY key, const char* name, DWORD* reserved, DWORD* type, LPBYTE data, DWORD* size) {
    const std::string_view path = pathOf(key);
    if (path.empty()) return ERROR_INVALID_HANDLE;
    if (reserved != nullptr || (data != nullptr && size == nullptr)) return ERROR_INVALID_PARAMETER;
    const SettingsFile file(O_RDONLY);
    std::string text;
    if (const LSTATUS status = readSettings(file, text)) return status;
    const std::optional<registry::Value> value = registry::findValue(text, path, name);
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

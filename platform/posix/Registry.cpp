// The registry functions, implemented on a settings file. Every call opens and reads the file again and nothing is
// cached, so that several processes and threads can use the file while a user edits it.

#include "platform/posix/EqualIgnoringCase.h"
#include "platform/posix/RegistryText.h"
#include "platform/posix/win32.h"
#include "platform/RegistryPlace.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>

/// An open key.
struct HKEY__ {
    std::string path;
};

namespace {

constexpr std::string_view softwarePath = "HKEY_LOCAL_MACHINE\\SOFTWARE";

/// The settings file. Opening it never blocks: the path may name a pipe.
class SettingsFile {
public:
    /// @param flags  for open(2)
    explicit SettingsFile(int flags) : descriptor(open(registryPlace(), flags | O_CLOEXEC | O_NONBLOCK, 0644)) {}
    SettingsFile(const SettingsFile&) = delete;
    SettingsFile& operator=(const SettingsFile&) = delete;
    ~SettingsFile() {
        if (descriptor >= 0) close(descriptor);
    }

    LSTATUS readText(std::string& text) const {
        if (descriptor < 0) return ERROR_ACCESS_DENIED;
        std::array<char, 4096> part; // not initialized: only the bytes read are used
        ssize_t length = 0;
        while ((length = read(descriptor, part.data(), part.size())) > 0) {
            text.append(part.data(), static_cast<std::size_t>(length));
        }
        if (length < 0) return ERROR_READ_FAULT;
        return registry::isSettingsText(text) ? ERROR_SUCCESS : ERROR_BADDB;
    }

    /// Appends a text in one write, so that texts of several threads and processes don't mix.
    bool append(const std::string& text) const {
        return write(descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    }

private:
    int descriptor;
};

std::string_view pathOf(HKEY key) {
    return key == HKEY_LOCAL_MACHINE ? "HKEY_LOCAL_MACHINE" : std::string_view(key->path);
}

std::string pathBelow(HKEY parent, const char* path) {
    return std::string(pathOf(parent)) + '\\' + path;
}

LSTATUS readValues(HKEY key, std::vector<registry::Value>& values) {
    std::string text;
    const LSTATUS status = SettingsFile(O_RDONLY).readText(text);
    if (status == ERROR_SUCCESS) values = registry::valuesOf(text, pathOf(key));
    return status;
}

/// Copies a value's type and data to a caller's variables, any of which may be null.
LSTATUS handOut(const registry::Value& value, DWORD* type, LPBYTE data, DWORD* size) {
    const DWORD room = size != nullptr ? *size : 0;
    if (type != nullptr) *type = value.type;
    if (size != nullptr) *size = static_cast<DWORD>(value.data.size());
    if (data == nullptr) return ERROR_SUCCESS;
    if (room < value.data.size()) return ERROR_MORE_DATA;
    std::copy(value.data.begin(), value.data.end(), data);
    return ERROR_SUCCESS;
}

} // namespace

const char* registryPlace() {
    const char* path = std::getenv("SPM_REGISTRY");
    return path != nullptr && *path != '\0' ? path : "/etc/kestrova/registry.reg";
}

LSTATUS RegOpenKeyExA(HKEY parent, const char* path, DWORD /*options*/, REGSAM access, HKEY* key) {
    const bool forWriting = (access & KEY_WRITE) == KEY_WRITE;
    std::string text;
    if (const LSTATUS status = SettingsFile(forWriting ? O_RDWR | O_CREAT : O_RDONLY).readText(text)) return status;
    const std::string fullPath = pathBelow(parent, path);
    // SOFTWARE exists even if the file has no heading for it.
    const bool exists = registry::isSameOrBelow(softwarePath, fullPath) || registry::hasKey(text, fullPath);
    if (!exists) return ERROR_FILE_NOT_FOUND;
    *key = new HKEY__{fullPath};
    return ERROR_SUCCESS;
}

LSTATUS RegCreateKeyA(HKEY parent, const char* path, HKEY* key) {
    const SettingsFile file(O_RDWR | O_CREAT | O_APPEND);
    std::string text;
    if (const LSTATUS status = file.readText(text)) return status;
    const std::string fullPath = pathBelow(parent, path);
    const std::string headings = registry::missingHeadings(text, pathOf(parent), fullPath);
    if (!headings.empty() && !file.append(headings)) return ERROR_DISK_FULL;
    *key = new HKEY__{fullPath};
    return ERROR_SUCCESS;
}

// NOLINTNEXTLINE(readability-non-const-parameter): the system's signature
LSTATUS RegQueryValueExA(HKEY key, const char* name, DWORD* /*reserved*/, DWORD* type, LPBYTE data, DWORD* size) {
    std::vector<registry::Value> values;
    if (const LSTATUS status = readValues(key, values)) return status;
    const auto found = std::find_if(values.begin(), values.end(),
                                    [&](const registry::Value& value) { return equalIgnoringCase(value.name, name); });
    return found != values.end() ? handOut(*found, type, data, size) : ERROR_FILE_NOT_FOUND;
}

// NOLINTNEXTLINE(readability-non-const-parameter): the system's signature
LSTATUS RegEnumValueA(HKEY key, DWORD index, char* name, DWORD* length, DWORD* /*reserved*/, DWORD* type, LPBYTE data,
                      DWORD* size) {
    std::vector<registry::Value> values;
    if (const LSTATUS status = readValues(key, values)) return status;
    if (index >= values.size()) return ERROR_NO_MORE_ITEMS;
    const registry::Value& value = values[index];
    if (value.name.size() >= *length) return ERROR_MORE_DATA;
    *length = static_cast<DWORD>(value.name.copy(name, value.name.size()));
    name[*length] = '\0';
    return handOut(value, type, data, size);
}

LSTATUS RegCloseKey(HKEY key) {
    delete key;
    return ERROR_SUCCESS;
}

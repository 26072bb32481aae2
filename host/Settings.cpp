#include "host/Settings.h"

#include "platform/win32.h"

#include <cstring>
#include <memory>
#include <type_traits>
#include <vector>

namespace host {

namespace {

constexpr const char* commonKey = "Kestrova\\SPM";
constexpr const char* deviceKey = "Kestrova\\SPM\\xrite i1 Pro3";

struct CloseKey {
    using pointer = HKEY;
    void operator()(HKEY key) const { RegCloseKey(key); }
};
using OpenKey = std::unique_ptr<std::remove_pointer_t<HKEY>, CloseKey>;

struct Stored {
    DWORD type = 0;
    std::vector<char> data;
};

std::optional<Stored> query(HKEY key, const std::string& name) {
    Stored stored;
    DWORD size = 0;
    if (RegQueryValueExA(key, name.c_str(), nullptr, &stored.type, nullptr, &size) != ERROR_SUCCESS) return {};
    stored.data.resize(size);
    auto* const data = reinterpret_cast<LPBYTE>(stored.data.data());
    if (RegQueryValueExA(key, name.c_str(), nullptr, &stored.type, data, &size) != ERROR_SUCCESS) return {};
    return stored;
}

std::optional<std::uint32_t> numberOf(const Stored& stored) {
    std::uint32_t value = 0;
    if (stored.type != REG_DWORD || stored.data.size() != sizeof value) return {};
    std::memcpy(&value, stored.data.data(), sizeof value);
    return value;
}

/// Like the module, takes the last byte for the text's NUL.
std::optional<std::string> textOf(const Stored& stored) {
    if (stored.type != REG_SZ || stored.data.empty()) return {};
    return std::string(stored.data.begin(), stored.data.end() - 1);
}

template <class Value>
Setting<Value> read(HKEY software, const char* key, const char* name, std::optional<Value> (*valueOf)(const Stored&)) {
    Setting<Value> setting{std::string("HKEY_LOCAL_MACHINE\\SOFTWARE\\") + key, name};
    HKEY opened = nullptr;
    if (software == nullptr || RegOpenKeyExA(software, key, 0, KEY_READ, &opened) != ERROR_SUCCESS) return setting;
    const OpenKey open(opened);
    if (const std::optional<Stored> stored = query(open.get(), name)) {
        setting.isStored = true;
        setting.value = valueOf(*stored);
    }
    return setting;
}

Settings::Access accessOf(LSTATUS status) {
    if (status == ERROR_SUCCESS) return Settings::Access::granted;
    return status == ERROR_ACCESS_DENIED ? Settings::Access::forbidden : Settings::Access::impossible;
}

} // namespace

Settings readSettings() {
    HKEY opened = nullptr;
    const LSTATUS status = RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE", 0, KEY_READ | KEY_WRITE, &opened);
    const OpenKey software(status == ERROR_SUCCESS ? opened : nullptr);
    return {accessOf(status), read(software.get(), commonKey, "Logging", numberOf),
            read(software.get(), commonKey, "Details", numberOf), read(software.get(), deviceKey, "Device", textOf)};
}

} // namespace host

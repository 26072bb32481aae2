// Reads the settings with the system functions that the module reads them with, so that both see the same.

#include "spm/doctor/Settings.h"

#include "platform/RegistryPlace.h"
#include "platform/win32.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>

namespace spm {

namespace {

namespace fs = std::filesystem;

struct Setting {
    const char* key;
    const char* name;
    DWORD type;
    const char* typeName;
    const char* defaultValue;
    /// The setting as written in a settings file.
    const char* example;
};

constexpr const char* root = "HKEY_LOCAL_MACHINE\\";
constexpr const char* commonKey = "SOFTWARE\\Kestrova\\SPM";
constexpr const char* deviceKey = "SOFTWARE\\Kestrova\\SPM\\xrite i1 Pro3";
constexpr std::array<Setting, 3> settings{{
    {commonKey, "Logging", REG_DWORD, "REG_DWORD", "0", "\"Logging\"=dword:00000001"},
    {commonKey, "Details", REG_DWORD, "REG_DWORD", "0", "\"Details\"=dword:00000001"},
    {deviceKey, "Device", REG_SZ, "REG_SZ of at most 1023 characters", "the first", "\"Device\"=\"USB\""},
}};

bool isSame(std::string_view left, std::string_view right) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::ranges::equal(left, right, {}, lower, lower);
}

/// An open key below HKEY_LOCAL_MACHINE; it has no values if it can't be opened.
class Key {
public:
    explicit Key(const char* path, REGSAM access = KEY_READ)
        : status(RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, access, &key)) {}
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    ~Key() {
        if (status == ERROR_SUCCESS) RegCloseKey(key);
    }

    LSTATUS openStatus() const { return status; }

    std::vector<std::string> names() const {
        std::vector<std::string> found;
        std::array<char, 16'384> name{}; // Windows' limit
        auto length = static_cast<DWORD>(name.size());
        for (DWORD i = 0; status == ERROR_SUCCESS && RegEnumValueA(key, i, name.data(), &length, nullptr, nullptr,
                                                                   nullptr, nullptr) == ERROR_SUCCESS;
             ++i) {
            found.emplace_back(name.data(), length);
            length = static_cast<DWORD>(name.size());
        }
        return found;
    }

    /// The value in words; nullopt if the module reads the default instead.
    std::optional<std::string> read(const Setting& setting) const {
        std::array<char, 1024> data{};
        auto size = static_cast<DWORD>(setting.type == REG_DWORD ? sizeof(DWORD) : data.size());
        DWORD type = 0;
        if (status != ERROR_SUCCESS || RegQueryValueExA(key, setting.name, nullptr, &type,
                                                        reinterpret_cast<LPBYTE>(data.data()), &size) != ERROR_SUCCESS)
            return std::nullopt;
        if (type != setting.type || size == 0) return std::nullopt;
        if (type == REG_SZ) return std::string(data.data(), strnlen(data.data(), size - 1));
        DWORD number = 0;
        std::memcpy(&number, data.data(), sizeof number);
        return std::to_string(number);
    }

private:
    HKEY key = nullptr;
    LSTATUS status;
};

/// The module opens this key for reading and writing, or reads no settings.
LSTATUS accessStatus() {
    return Key("SOFTWARE", KEY_READ | KEY_WRITE).openStatus();
}

Finding describeAccess(LSTATUS status) {
    const std::string place = registryPlace();
    if (status == ERROR_SUCCESS) return {Verdict::good, "Settings", place, ""};
    if (status == ERROR_BADDB) {
        return {
            Verdict::wrong, "Settings",
            fmt::format("the defaults apply, because {} does not start with the line REGEDIT4", place),
            "export it as \"Win9x/NT4 Registration Files (REGEDIT4)\", or save it as single-byte text with that line"};
    }
    const fs::path folder = fs::path(place).parent_path();
    std::error_code ignored;
    if (!folder.empty() && !fs::exists(folder, ignored)) {
        return {Verdict::note, "Settings",
                fmt::format("the defaults apply, because the folder {} is missing", folder.string()),
                "to use settings, create the folder, or set SPM_REGISTRY to another file"};
    }
    return {Verdict::note, "Settings",
            fmt::format("the defaults apply, because {} can't be opened for reading and writing", place),
            fmt::format("to use settings, {}", registryAdvice)};
}

/// The number of the first line of the settings file, if there is one, that names a setting.
std::optional<int> findLine(std::string_view name) {
    std::error_code ignored;
    if (!fs::is_regular_file(registryPlace(), ignored)) return std::nullopt;
    std::ifstream file(registryPlace());
    int number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        const std::size_t begin = line.find_first_not_of(" \t\"");
        if (begin == std::string::npos || line.find("=-") != std::string::npos) continue;
        if (isSame(std::string_view(line).substr(begin, name.size()), name)) return number;
    }
    return std::nullopt;
}

Finding describe(const Setting& setting, bool isAccessible) {
    const std::string path = fmt::format("{}{}", root, setting.key);
    const Key key(setting.key);
    const auto value = isAccessible ? key.read(setting) : std::nullopt;
    if (value) return {Verdict::good, setting.name, fmt::format("{}, from {}", *value, path), ""};
    const std::string isDefault = fmt::format("{} by default", setting.defaultValue);
    const auto isIt = [&](const std::string& name) { return isSame(name, setting.name); };
    if (isAccessible && std::ranges::any_of(key.names(), isIt)) {
        return {Verdict::wrong, setting.name,
                fmt::format("{}: the value in {} is not a {}", isDefault, path, setting.typeName),
                fmt::format("set it as a {}, or remove it", setting.typeName)};
    }
    if (const auto line = findLine(setting.name)) {
        return {Verdict::note, setting.name,
                fmt::format("{}: line {} of {} has no effect", isDefault, *line, registryPlace()),
                isAccessible ? fmt::format("write {} below [{}]", setting.example, path)
                             : "make the settings readable and writable first"};
    }
    return {Verdict::good, setting.name, fmt::format("{}, not set in {}", isDefault, path), ""};
}

/// Lists the values in a key that the module doesn't read.
void listUnknown(const char* key, std::vector<Finding>& findings) {
    for (const std::string& name : Key(key).names()) {
        const auto isKnown = [&](const Setting& each) { return isSame(each.key, key) && isSame(each.name, name); };
        if (std::ranges::any_of(settings, isKnown)) continue;
        findings.push_back({Verdict::note, "Unknown",
                            fmt::format("the module does not read {} in {}{}", name, root, key),
                            "correct its name, or remove it"});
    }
}

} // namespace

std::vector<Finding> examineSettings() {
    const LSTATUS status = accessStatus();
    std::vector<Finding> findings{describeAccess(status)};
    for (const Setting& setting : settings) {
        findings.push_back(describe(setting, status == ERROR_SUCCESS));
    }
    listUnknown(commonKey, findings);
    listUnknown(deviceKey, findings);
    return findings;
}

bool isLoggingEnabled() {
    return accessStatus() == ERROR_SUCCESS && Key(commonKey).read(settings[0]).value_or("0") != "0";
}

} // namespace spm

#include "spm/doctor/Settings.h"

#include "module/SPMRegistry.h"
#include "spm/doctor/StoredSettings.h"

#include <algorithm>
#include <cctype>
#include <fmt/format.h>
#include <fmt/ranges.h>

namespace spm {

namespace {

/// The module's getName, which is also the name of the key with the instrument's settings.
constexpr const char* model = "xrite i1 Pro3";

/// Whether a name is one of these, ignoring case.
bool isOneOf(const std::string& name, const std::vector<std::string>& names) {
    return std::ranges::any_of(names, [&](const std::string& each) {
        return std::ranges::equal(
            each, name, {}, [](char c) { return std::tolower(static_cast<unsigned char>(c)); },
            [](char c) { return std::tolower(static_cast<unsigned char>(c)); });
    });
}

/// Why the module can't read a settings file with this content.
const char* findDefect(const std::string& text) {
    if (text.empty()) return "can't be read";
    if (text.starts_with("\xFF\xFE")) return "is UTF-16 text, written by a newer version of regedit";
    if (text.starts_with("Windows Registry Editor")) return "has the format of a newer version of regedit";
    return "does not start with the line REGEDIT4";
}

Finding describeAccess() {
    const std::string place = SPMRegistry::place();
    switch (SPMRegistry::access()) {
    case SPMRegistry::Access::granted:
        return {Verdict::good, "Settings", place, ""};
    case SPMRegistry::Access::denied:
        return {Verdict::note, "Settings",
                fmt::format("the defaults apply, because {} can't be opened for reading and writing", place),
                fmt::format("to use settings, {}", settingsAccessAdvice)};
    default:
        return {Verdict::wrong, "Settings",
                fmt::format("the defaults apply, because {} {}", place, findDefect(settingsText())),
                "export it as \"Win9x/NT4 Registration Files (REGEDIT4)\", or save it as single-byte text whose first "
                "line is REGEDIT4"};
    }
}

struct Setting {
    const char* name;
    const char* type;
    const char* defaultValue;
    /// A value as written in the settings file.
    const char* example;
    std::string keyPath;
};

/// A value that is stored, but that the module doesn't find.
Finding describeIgnored(const Setting& setting) {
    const auto& [name, type, defaultValue, example, keyPath] = setting;
    std::string advice = fmt::format("write it as \"{}\"={}", name, example);
    if (SPMRegistry::access() == SPMRegistry::Access::denied) advice = settingsAccessAdvice;
    if (SPMRegistry::access() == SPMRegistry::Access::failed) advice = "fix the settings file first";
    return {Verdict::wrong, name, fmt::format("{} by default: the value in {} is ignored", defaultValue, keyPath),
            advice};
}

template <class Value>
Finding describe(const Setting& setting, const SPMRegistry& key, const std::optional<Value>& value,
                 const std::vector<std::string>& stored) {
    const auto& [name, type, defaultValue, example, keyPath] = setting;
    if (value) return {Verdict::good, name, fmt::format("{}, from {}", *value, keyPath), ""};
    if (key.hasValue(name)) {
        return {Verdict::wrong, name,
                fmt::format("{} by default: the value in {} is not a {}", defaultValue, keyPath, type),
                fmt::format("set it as a {}, or remove it", type)};
    }
    if (isOneOf(keyPath + '\\' + name, stored)) return describeIgnored(setting);
    return {Verdict::good, name, fmt::format("{} by default, not set in {}", defaultValue, keyPath), ""};
}

Finding describeNumber(const char* name, const std::vector<std::string>& stored) {
    const SPMRegistry key;
    return describe({name, "REG_DWORD", "0", "dword:00000001", SPMRegistry::path()}, key, key.findNumber(name), stored);
}

Finding describeDevice(const std::vector<std::string>& stored) {
    const SPMRegistry key(model);
    return describe({SPMRegistry::device, "REG_SZ", "the first", "\"USB\"", SPMRegistry::path(model)}, key,
                    key.findString(SPMRegistry::device), stored);
}

/// Lists values in the module's keys that the module doesn't read.
void listUnknown(const std::vector<std::string>& stored, std::vector<Finding>& findings) {
    const std::vector<std::string> keys{SPMRegistry::path(), SPMRegistry::path(model)};
    const std::vector<std::string> known{keys[0] + '\\' + SPMRegistry::logging, keys[0] + '\\' + SPMRegistry::details,
                                         keys[1] + '\\' + SPMRegistry::device};
    for (const std::string& path : stored) {
        if (!isOneOf(path.substr(0, path.rfind('\\')), keys) || isOneOf(path, known)) continue;
        findings.push_back({Verdict::note, "Unknown", fmt::format("{} is set, but the module does not read it", path),
                            fmt::format("the settings are {}", fmt::join(known, ", "))});
    }
}

} // namespace

std::vector<Finding> examineSettings() {
    const std::vector<std::string> stored = storedValues();
    std::vector<Finding> findings{describeAccess(), describeNumber(SPMRegistry::logging, stored),
                                  describeNumber(SPMRegistry::details, stored), describeDevice(stored)};
    listUnknown(stored, findings);
    return findings;
}

bool isLoggingEnabled() {
    return SPMRegistry().readNumber(SPMRegistry::logging, 0) != 0;
}

} // namespace spm

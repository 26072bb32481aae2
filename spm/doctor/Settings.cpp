#include "spm/doctor/Settings.h"

#include "common/Spelling.h"
#include "module/SPMRegistry.h"
#include "spm/doctor/StoredSettings.h"

#include <algorithm>
#include <fmt/format.h>

namespace spm {

namespace {

using Access = SPMRegistry::Access;

/// The model whose settings are looked at: what the module's getName answers.
constexpr const char* model = "xrite i1 Pro3";

/// What a settings file is that the module can't read, by how it begins.
std::string describeForm(const std::string& text) {
    constexpr std::string_view signature = "Windows Registry Editor";
    if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF")) return "is UTF-16 text of a newer regedit";
    if (text.starts_with("\xEF\xBB\xBF")) return "begins with a byte order mark";
    if (text.starts_with(signature)) return "has the form of a newer regedit";
    return text.empty() ? "can't be read" : "does not begin with the line REGEDIT4";
}

Finding describeAccess(Access access) {
    const std::string place = SPMRegistry::place();
    switch (access) {
    case Access::granted:
        return {Verdict::good, "Settings", place, ""};
    case Access::denied:
        return {Verdict::note, "Settings",
                fmt::format("the defaults hold, because {} can't be opened for reading and writing", place),
                fmt::format("to have settings, {}", settingsRightAdvice)};
    default:
        return {Verdict::wrong, "Settings",
                fmt::format("the defaults hold, because {} {}", place, describeForm(settingsText())),
                "export it as \"Win9x/NT4 Registration Files (REGEDIT4)\", or save it as single-byte text whose first "
                "line is REGEDIT4"};
    }
}

/// A value that can be set in a key.
struct Setting {
    const char* name;
    const char* type;
    const char* byDefault;
    const char* example;
    std::string keyPath;
};

const std::vector<Setting>& knownSettings() {
    static const std::vector<Setting> all{
        {SPMRegistry::logging, "REG_DWORD", "0", "dword:00000001", SPMRegistry::path()},
        {SPMRegistry::details, "REG_DWORD", "0", "dword:00000001", SPMRegistry::path()},
        {SPMRegistry::device, "REG_SZ", "the first", "\"USB\"", SPMRegistry::path(model)}};
    return all;
}

std::string pathOf(const std::string& key, const std::string& name) {
    return common::lowered(key + '\\' + name);
}

bool isOf(const Setting& setting, const StoredValue& value) {
    return pathOf(setting.keyPath, setting.name) == pathOf(value.key, value.name);
}

/// A setting that the module has no value of, though one is stored.
Finding describeIgnored(const Setting& setting, Access access) {
    const auto& [name, type, byDefault, example, keyPath] = setting;
    const std::string text = fmt::format("{} by default: what is set in {} is ignored", byDefault, keyPath);
    if (access == Access::granted) {
        return {Verdict::wrong, name, text + ", because it can't be understood",
                fmt::format("write the line \"{}\"={}", name, example)};
    }
    return {Verdict::wrong, name, text, access == Access::denied ? settingsRightAdvice : "fix the settings file first"};
}

template <class Value>
Finding describe(const Setting& setting, bool isStored, const std::optional<Value>& value) {
    const auto& [name, type, byDefault, example, keyPath] = setting;
    if (value) return {Verdict::good, name, fmt::format("{}, from {}", *value, keyPath), ""};
    if (!isStored) {
        return {Verdict::good, name, fmt::format("{} by default, not set in {}", byDefault, keyPath), ""};
    }
    return {Verdict::wrong, name,
            fmt::format("{} by default, because what is set in {} is not a {}", byDefault, keyPath, type),
            fmt::format("set it as a {}, or remove it", type)};
}

Finding examine(const Setting& setting, const std::vector<StoredValue>& stored, Access access) {
    const bool isNumber = setting.type == std::string_view("REG_DWORD");
    const SPMRegistry common;
    const SPMRegistry own(model);
    const SPMRegistry& key = isNumber ? common : own;
    const bool isHeld = key.hasValue(setting.name);
    const auto isThis = [&](const StoredValue& value) { return isOf(setting, value); };
    if (!isHeld && std::any_of(stored.begin(), stored.end(), isThis)) return describeIgnored(setting, access);
    if (isNumber) return describe(setting, isHeld, key.findNumber(setting.name));
    return describe(setting, isHeld, key.findString(setting.name));
}

/// Whether a value may be meant for the module, and is not one that it reads.
bool isMisplaced(const StoredValue& value) {
    const std::vector<Setting>& known = knownSettings();
    if (std::any_of(known.begin(), known.end(), [&](const Setting& each) { return isOf(each, value); })) return false;
    const std::string key = common::lowered(value.key);
    if (std::any_of(known.begin(), known.end(),
                    [&](const Setting& each) { return common::lowered(each.keyPath) == key; }))
        return true;
    const bool isNear =
        common::nearestName(value.name, {SPMRegistry::logging, SPMRegistry::details, SPMRegistry::device}).has_value();
    return isNear && (key.find("kestrova") != std::string::npos || key.find("spm") != std::string::npos);
}

Finding describeMisplaced(const StoredValue& value) {
    const auto distance = [&](const Setting& setting) {
        return common::editDistance(pathOf(setting.keyPath, setting.name), pathOf(value.key, value.name));
    };
    const std::vector<Setting>& known = knownSettings();
    const Setting& meant = *std::min_element(
        known.begin(), known.end(), [&](const Setting& a, const Setting& b) { return distance(a) < distance(b); });
    return {Verdict::note, "Unknown", fmt::format("\"{}\" in {} is not read", value.name, value.key),
            fmt::format("the nearest setting is \"{}\" in {}", meant.name, meant.keyPath)};
}

} // namespace

std::vector<Finding> examineSettings() {
    const Access access = SPMRegistry::access();
    const std::vector<StoredValue> stored = storedValues();
    std::vector<Finding> findings{describeAccess(access)};
    for (const Setting& setting : knownSettings()) {
        findings.push_back(examine(setting, stored, access));
    }
    for (const StoredValue& value : stored) {
        if (isMisplaced(value)) findings.push_back(describeMisplaced(value));
    }
    return findings;
}

bool isLoggingOn() {
    return SPMRegistry().readNumber(SPMRegistry::logging, 0) != 0;
}

} // namespace spm

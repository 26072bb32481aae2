#include "spm/doctor/Settings.h"

#include "common/Spelling.h"
#include "module/SPMRegistry.h"
#include "spm/doctor/StoredSettings.h"

#include <fmt/format.h>

namespace spm {

namespace {

/// The model whose settings are looked at: what the module's getName answers.
constexpr const char* model = "xrite i1 Pro3";

/// What is wrong with a settings file that the module can't read, by how it begins.
const char* formOf(const std::string& text) {
    if (text.empty()) return "can't be read";
    if (text.starts_with("\xFF\xFE")) return "is UTF-16 text, as a newer regedit writes it";
    if (text.starts_with("Windows Registry Editor")) return "has the form of a newer regedit";
    return "does not begin with the line REGEDIT4";
}

Finding describeAccess() {
    const std::string place = SPMRegistry::place();
    switch (SPMRegistry::access()) {
    case SPMRegistry::Access::granted:
        return {Verdict::good, "Settings", place, ""};
    case SPMRegistry::Access::denied:
        return {Verdict::note, "Settings",
                fmt::format("the defaults hold, because {} can't be opened for reading and writing", place),
                fmt::format("to have settings, {}", settingsRightAdvice)};
    default:
        return {Verdict::wrong, "Settings",
                fmt::format("the defaults hold, because {} {}", place, formOf(settingsText())),
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

Finding describeIgnored(const Setting& setting) {
    const auto& [name, type, byDefault, example, keyPath] = setting;
    std::string advice = fmt::format("write it as \"{}\"={}", name, example);
    if (SPMRegistry::access() == SPMRegistry::Access::denied) advice = settingsRightAdvice;
    if (SPMRegistry::access() == SPMRegistry::Access::failed) advice = "fix the settings file first";
    return {Verdict::wrong, name, fmt::format("{} by default: what is set in {} is ignored", byDefault, keyPath),
            advice};
}

template <class Value>
Finding describe(const Setting& setting, const SPMRegistry& key, const std::optional<Value>& value,
                 const std::vector<std::string>& stored) {
    const auto& [name, type, byDefault, example, keyPath] = setting;
    if (value) return {Verdict::good, name, fmt::format("{}, from {}", *value, keyPath), ""};
    if (key.hasValue(name)) {
        return {Verdict::wrong, name,
                fmt::format("{} by default, because what is set in {} is not a {}", byDefault, keyPath, type),
                fmt::format("set it as a {}, or remove it", type)};
    }
    if (common::nearestName(keyPath + '\\' + name, stored, 0)) return describeIgnored(setting);
    return {Verdict::good, name, fmt::format("{} by default, not set in {}", byDefault, keyPath), ""};
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

/// Looks for values that may be meant for the module, though it does not read them: those in the module's keys, and
/// those in keys of other paths that have names like its own.
void findMisplaced(const std::vector<std::string>& stored, std::vector<Finding>& findings) {
    const std::vector<std::string> names{SPMRegistry::logging, SPMRegistry::details, SPMRegistry::device};
    const std::vector<std::string> keys{SPMRegistry::path(), SPMRegistry::path(model)};
    const std::vector<std::string> known{keys[0] + '\\' + names[0], keys[0] + '\\' + names[1],
                                         keys[1] + '\\' + names[2]};
    for (const std::string& path : stored) {
        const std::size_t end = path.rfind('\\');
        const bool isMeant =
            common::nearestName(path.substr(0, end), keys, 0) || common::nearestName(path.substr(end + 1), names);
        if (!isMeant || common::nearestName(path, known, 0)) continue;
        findings.push_back({Verdict::note, "Unknown", fmt::format("{} is set, but not read", path),
                            fmt::format("the nearest value that is read is {}",
                                        *common::nearestName(path, known, std::string::npos))});
    }
}

} // namespace

std::vector<Finding> examineSettings() {
    const std::vector<std::string> stored = storedValues();
    std::vector<Finding> findings{describeAccess(), describeNumber(SPMRegistry::logging, stored),
                                  describeNumber(SPMRegistry::details, stored), describeDevice(stored)};
    findMisplaced(stored, findings);
    return findings;
}

bool isLoggingOn() {
    return SPMRegistry().readNumber(SPMRegistry::logging, 0) != 0;
}

} // namespace spm

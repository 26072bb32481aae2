#include "spm/doctor/Settings.h"

#include "module/SPMRegistry.h"

#include <fmt/format.h>

namespace spm {

namespace {

/// The model whose settings are looked at: what the module's getName answers.
constexpr const char* model = "xrite i1 Pro3";

Finding describeAccess() {
    const std::string place = SPMRegistry::place();
    switch (SPMRegistry::access()) {
    case SPMRegistry::Access::granted:
        return {Verdict::good, "Settings", place, ""};
    case SPMRegistry::Access::denied:
        return {Verdict::note, "Settings",
                fmt::format("the defaults hold, because {} can't be opened for reading and writing", place),
                "to have settings, make its folder, and give this user the right to write"};
    default:
        return {Verdict::wrong, "Settings",
                fmt::format("the defaults hold, because {} is damaged or can't be read", place),
                "mend or remove it; a settings file begins with the line REGEDIT4"};
    }
}

/// A value that can be set in a key.
struct Setting {
    const char* name;
    const char* type;
    const char* byDefault;
    std::string keyPath;
};

template <class Value>
Finding describe(const Setting& setting, bool isStored, const std::optional<Value>& value) {
    const auto& [name, type, byDefault, keyPath] = setting;
    if (value) return {Verdict::good, name, fmt::format("{}, from {}", *value, keyPath), ""};
    if (!isStored) {
        return {Verdict::good, name, fmt::format("{} by default, not set in {}", byDefault, keyPath), ""};
    }
    return {Verdict::wrong, name,
            fmt::format("{} by default, because what is set in {} is no {}", byDefault, keyPath, type),
            fmt::format("set it as a {}, or remove it", type)};
}

Finding describeNumber(const SPMRegistry& key, const char* name) {
    return describe({name, "REG_DWORD", "0", SPMRegistry::path()}, key.hasValue(name), key.findNumber(name));
}

Finding describeDevice() {
    const SPMRegistry key(model);
    return describe({SPMRegistry::device, "REG_SZ", "the first", SPMRegistry::path(model)},
                    key.hasValue(SPMRegistry::device), key.findString(SPMRegistry::device));
}

} // namespace

std::vector<Finding> examineSettings() {
    const SPMRegistry key;
    return {describeAccess(), describeNumber(key, SPMRegistry::logging), describeNumber(key, SPMRegistry::details),
            describeDevice()};
}

bool isLoggingOn() {
    return SPMRegistry().readNumber(SPMRegistry::logging, 0) != 0;
}

} // namespace spm

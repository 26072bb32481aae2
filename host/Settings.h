#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace host {

/// A setting of the module.
template <class Value>
struct Setting {
    std::string key;
    std::string name;
    /// Whether anything is stored.
    bool isStored = false;
    /// Empty when what is stored is of another type, which the module does not take.
    std::optional<Value> value{};
};

/// The module's settings, read with the rights that the module needs: where it gets none of them, there are none here.
struct Settings {
    enum class Access { granted, forbidden, impossible };

    Access access;
    Setting<std::uint32_t> logging;
    Setting<std::uint32_t> details;
    Setting<std::string> device;
};

Settings readSettings();

} // namespace host

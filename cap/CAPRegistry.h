#pragma once

#include "platform/win32.h"

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>

/// Reads values from one key below HKEY_LOCAL_MACHINE\SOFTWARE\Kestrova. The key stays open for the object's lifetime.
///
/// Failures (missing rights, key or value; a value of the wrong type) are not reported: the value reads as its default.
class CAPRegistry {
public:
    /// Opens the key, creating it and its missing parents if needed. Needs write access to HKEY_LOCAL_MACHINE\SOFTWARE,
    /// even if the key exists; without it, all values read as their defaults.
    /// @param subkey  path below SOFTWARE\Kestrova
    explicit CAPRegistry(std::string subkey);
    CAPRegistry(const CAPRegistry&) = delete;
    CAPRegistry& operator=(const CAPRegistry&) = delete;
    virtual ~CAPRegistry() = default;

    /// Returns the value of a REG_DWORD.
    std::uint32_t readNumber(const std::string& name, std::uint32_t defaultValue) const;

    /// Returns the text of a REG_SZ of at most 1023 characters. A text stored without its terminating NUL loses its
    /// last character; a value of 0 bytes reads as the default.
    std::string readString(const std::string& name, const std::string& defaultValue) const;

private:
    struct CloseKey {
        using pointer = HKEY;
        void operator()(HKEY open) const { RegCloseKey(open); }
    };
    using OpenKey = std::unique_ptr<std::remove_pointer_t<HKEY>, CloseKey>;

    OpenKey key;
};

#pragma once

#include "platform/win32.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>

/// One key below HKEY_LOCAL_MACHINE\SOFTWARE\Kestrova, open for the object's life, and plain values read from it.
///
/// Whatever goes wrong (no rights, no key, no value, a value of another type) reads as the default; nothing throws or
/// reports an error.
class CAPRegistry {
public:
    /// What opening HKEY_LOCAL_MACHINE\SOFTWARE for reading and writing comes to.
    enum class Access { granted, denied, failed };
    static Access access();

    /// Where the values are stored, as a user knows the place: a settings file's path, or "the registry".
    static std::string place();

    /// The full path of a key, from HKEY_LOCAL_MACHINE on.
    /// @param subkey  path below the maker's key
    static std::string pathOf(const std::string& subkey);

    /// Opens the key, and creates it with its missing parents where the process may.
    /// @param subkey  path below the maker's key
    explicit CAPRegistry(std::string subkey);
    CAPRegistry(const CAPRegistry&) = delete;
    CAPRegistry& operator=(const CAPRegistry&) = delete;
    virtual ~CAPRegistry();

    /// The value of a REG_DWORD.
    std::uint32_t readNumber(const std::string& name, std::uint32_t defaultValue) const;

    /// The text of a REG_SZ of at most 1023 characters. One stored without its terminating NUL loses its last
    /// character; one of 0 bytes reads as the default.
    std::string readString(const std::string& name, const std::string& defaultValue) const;

    /// What readNumber and readString read; none where they give the default.
    std::optional<std::uint32_t> findNumber(const std::string& name) const;
    std::optional<std::string> findString(const std::string& name) const;

    /// Whether the key has a value of this name, of whichever type.
    bool hasValue(const std::string& name) const;

private:
    struct CloseKey {
        using pointer = HKEY;
        void operator()(HKEY open) const { RegCloseKey(open); }
    };
    using OpenKey = std::unique_ptr<std::remove_pointer_t<HKEY>, CloseKey>;

    static LSTATUS openSoftware(OpenKey& software);

    OpenKey key;
};

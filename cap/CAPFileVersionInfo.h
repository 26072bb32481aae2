#pragma once

#include "platform/win32.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

/// The version resource of a file: its fixed version numbers and its twelve standard texts, taken from the string table
/// that best matches the user's language. After a failed loadFromFile, all numbers are 0 and all texts null.
class CAPFileVersionInfo {
public:
    CAPFileVersionInfo() = default;
    CAPFileVersionInfo(const CAPFileVersionInfo&) = delete;
    CAPFileVersionInfo& operator=(const CAPFileVersionInfo&) = delete;
    virtual ~CAPFileVersionInfo() = default;

    /// Loads the version resource of a loaded module's file. If the module has no file name, the object stays
    /// unchanged.
    /// @return 1 on success, 0 on failure
    int loadFromModule(HMODULE module);

    /// Loads a file's version resource, replacing what was loaded before.
    /// @return 1 if the file has a version resource, even one without a fixed part or texts; otherwise 0
    int loadFromFile(const char* path);

    void clear();

    /// Returns a component of the file version, counted from the least significant: for a.b.c.d, 0 is d and 3 is a.
    /// @return 0 if the index is out of range or no version is loaded
    std::uint16_t getFileVersionPart(int index) const;

    /// Returns the text "Comments", valid until the next load, clear or destruction; null if there is none.
    const char* getComments() const;

private:
    std::optional<std::string> fileName;
    VS_FIXEDFILEINFO fixedInfo{};
    std::array<std::optional<std::string>, 12> texts;
};

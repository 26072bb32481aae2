#pragma once

#include "platform/win32.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

/// The version resource of a file: its fixed version numbers and its twelve standard texts, in the string table that
/// suits the user's language best. Failures show in the result of a load, and as zeros and nulls afterwards.
class CAPFileVersionInfo {
public:
    /// The standard texts, in the order in which they are kept.
    enum class Text {
        companyName,
        fileDescription,
        fileVersion,
        internalName,
        legalCopyright,
        originalFileName,
        productName,
        productVersion,
        comments,
        legalTrademarks,
        privateBuild,
        specialBuild,
    };
    static constexpr std::size_t textCount = 12;

    CAPFileVersionInfo() = default;
    CAPFileVersionInfo(const CAPFileVersionInfo&) = delete;
    CAPFileVersionInfo& operator=(const CAPFileVersionInfo&) = delete;
    virtual ~CAPFileVersionInfo();

    /// Loads the resource of a loaded module's file; leaves the object as it was when the module has no file name.
    /// @return 1 loaded, 0 failed
    int loadFromModule(HMODULE module);

    /// Loads a file's resource in place of what the object held.
    /// @return 1 when there is a resource, even one without a fixed part or texts; otherwise 0
    int loadFromFile(const char* path);

    void clear();

    /// A component of the file version, from the least significant: of version a.b.c.d, 0 is d and 3 is a.
    /// @return 0 for any other index, and when there is no version
    std::uint16_t getFileVersionPart(int index) const;

    /// A text of the resource, valid until the next load, clear or destruction; null where the resource has none.
    const char* getText(Text text) const;
    const char* getComments() const { return getText(Text::comments); }

private:
    std::optional<std::string> fileName;
    VS_FIXEDFILEINFO fixedInfo{};
    std::array<std::optional<std::string>, textCount> texts;
};

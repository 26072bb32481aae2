// The module's version resource where there is no resource compiler, with the same values as cmake/version.rc.

#include "platform/posix/VersionEntry.h"
#include "version.h"

#include <bit>

namespace {

/// Combines two of a version's four numbers, 16 bits each.
constexpr DWORD versionHalf(DWORD high, DWORD low) {
    return high << 16 | low;
}

constexpr DWORD mostSignificant = versionHalf(SPM_VERSION_MAJOR, SPM_VERSION_MINOR);
constexpr DWORD leastSignificant = versionHalf(SPM_VERSION_PATCH, SPM_VERSION_TWEAK);

constexpr VS_FIXEDFILEINFO fixedInfo{
    .dwSignature = 0xFEEF04BD,
    .dwStrucVersion = 0x00010000,
    .dwFileVersionMS = mostSignificant,
    .dwFileVersionLS = leastSignificant,
    .dwProductVersionMS = mostSignificant,
    .dwProductVersionLS = leastSignificant,
    .dwFileFlagsMask = 0x3F,
    .dwFileFlags = 0,
    .dwFileOS = 0x00040004, // VOS_NT_WINDOWS32
    .dwFileType = 2,        // dynamic library
    .dwFileSubtype = 0,
    .dwFileDateMS = 0,
    .dwFileDateLS = 0,
};

constexpr auto fixedBytes = std::bit_cast<std::array<char, sizeof fixedInfo>>(fixedInfo);
constexpr std::string_view usEnglishUnicode("\x09\x04\xB0\x04", 4);

/// @param text  a literal, whose terminating NUL belongs to the value
template <std::size_t size>
constexpr VersionEntry textEntry(const char* name, const char (&text)[size]) { // NOLINT(*-avoid-c-arrays)
    return makeVersionEntry("\\StringFileInfo\\040904B0\\", name, {text, size});
}

[[gnu::section(SPM_VERSION_SECTION), gnu::used]] constexpr std::array versionResource{
    makeVersionEntry("\\", "", {fixedBytes.data(), fixedBytes.size()}),
    makeVersionEntry("\\VarFileInfo\\", "Translation", usEnglishUnicode),
    textEntry("CompanyName", SPM_VERSION_COMPANY),
    textEntry("FileDescription", SPM_VERSION_DESCRIPTION),
    textEntry("FileVersion", SPM_VERSION_TEXT),
    textEntry("InternalName", SPM_VERSION_INTERNAL_NAME),
    textEntry("LegalCopyright", SPM_VERSION_COPYRIGHT),
    textEntry("OriginalFilename", SPM_VERSION_FILE_NAME),
    textEntry("ProductName", SPM_VERSION_PRODUCT),
    textEntry("ProductVersion", SPM_VERSION_TEXT),
};

} // namespace

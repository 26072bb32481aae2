// The same version resource as in support/versioned.rc.

#include "platform/posix/VersionEntry.h"

#include <bit>

namespace {

constexpr VS_FIXEDFILEINFO fixedInfo{0xFEEF04BD, 0x10000, 0x10002, 0x30004, 0, 0, 0, 0, 0, 0, 0, 0, 0};
constexpr auto fixedBytes = std::bit_cast<std::array<char, sizeof fixedInfo>>(fixedInfo);

[[gnu::section(SPM_VERSION_SECTION), gnu::used]] constexpr std::array versionResource{
    makeVersionEntry("\\", "", {fixedBytes.data(), fixedBytes.size()}),
    makeVersionEntry("\\VarFileInfo\\", "Translation", {"\x0C\x04\xB0\x04\x09\x04\xB0\x04", 8}),
    makeVersionEntry("\\StringFileInfo\\040C04B0\\", "Comments", {"French\0", 7}),
    makeVersionEntry("\\StringFileInfo\\040904B0\\", "Comments", {"English\0", 8}),
};

} // namespace

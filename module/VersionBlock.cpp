// The module's version resource for systems without a resource compiler: the same tree that cmake/version.rc gives on
// Windows, built at compile time and placed in the section ".rsrc", where platform/posix/VersionResource.cpp finds it.

#include "platform/VersionBlock.h"

#include "version.h"

#include <algorithm>
#include <array>

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

constexpr auto texts = std::to_array<version_block::Text>({
    {"CompanyName", SPM_VERSION_COMPANY},
    {"FileDescription", SPM_VERSION_DESCRIPTION},
    {"FileVersion", SPM_VERSION_TEXT},
    {"InternalName", SPM_VERSION_INTERNAL_NAME},
    {"LegalCopyright", SPM_VERSION_COPYRIGHT},
    {"OriginalFilename", SPM_VERSION_FILE_NAME},
    {"ProductName", SPM_VERSION_PRODUCT},
    {"ProductVersion", SPM_VERSION_TEXT},
});

constexpr auto tables = std::to_array<version_block::Table>({{0x0409, 0x04B0, texts}});

constexpr version_block::Block block = version_block::build(version_block::fixedPart(fixedInfo), tables);

constexpr std::array<char, block.size()> resourceBytes() {
    std::array<char, block.size()> bytes{};
    std::copy(block.begin(), block.end(), bytes.begin());
    return bytes;
}

[[gnu::section(".rsrc"), gnu::used, gnu::aligned(4)]] constexpr auto versionResource = resourceBytes();

} // namespace

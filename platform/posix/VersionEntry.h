#pragma once

#include "platform/posix/win32.h"

#include <algorithm>
#include <array>
#include <string_view>

/// The section of an ELF file that holds its version resource, an array of VersionEntry.
#define SPM_VERSION_SECTION ".spm_version"

/// A value of a version resource, under the path by which VerQueryValueA finds it.
struct VersionEntry {
    std::array<char, 56> path;
    DWORD length;
    std::array<char, 68> value;
};

/// The path consists of a folder, such as "\\StringFileInfo\\040904B0\\", and a name.
constexpr VersionEntry makeVersionEntry(std::string_view folder, std::string_view name, std::string_view value) {
    VersionEntry entry{};
    std::copy(name.begin(), name.end(), std::copy(folder.begin(), folder.end(), entry.path.begin()));
    std::copy(value.begin(), value.end(), entry.value.begin());
    entry.length = static_cast<DWORD>(value.size());
    return entry;
}

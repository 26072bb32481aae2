#pragma once

// Reads a settings file in the REGEDIT4 format: headings, and texts, numbers and byte lists on one line each. Later
// lines override earlier ones. Names are not case-sensitive. Lines in any other form are ignored, and no line is ever
// changed.

#include "platform/posix/win32.h"

#include <string>
#include <string_view>
#include <vector>

namespace registry {

struct Value {
    std::string name;
    DWORD type = 0;
    /// The bytes as stored; a text includes its terminating NUL.
    std::string data;
};

/// Whether the text is in the REGEDIT4 format: empty, or with REGEDIT4 as its first line.
bool isSettingsText(std::string_view text);

/// Whether the key or a key below it has a heading. Keys are full paths: "HKEY_LOCAL_MACHINE\SOFTWARE\...".
bool hasKey(std::string_view text, std::string_view key);

/// Whether a path is the key `top` or a key below it.
bool isSameOrBelow(std::string_view path, std::string_view top);

/// The values of a key, each name once.
std::vector<Value> valuesOf(std::string_view text, std::string_view key);

/// Returns what to append to the text so that the key and its parents below `root` have headings; empty if they do.
/// Uses the text's own line endings.
std::string missingHeadings(std::string_view text, std::string_view root, std::string_view key);

} // namespace registry

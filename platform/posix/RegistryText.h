#pragma once

// Reads a settings file in the REGEDIT4 format with the result that importing it on Windows would have: lines apply in
// order, later ones override earlier ones, and "[-key]" and "name"=- delete. Names are not case-sensitive. Unknown
// lines are ignored, and existing lines are never changed.

#include "platform/posix/win32.h"

#include <optional>
#include <string>
#include <string_view>

namespace registry {

struct Value {
    DWORD type = 0;
    /// The bytes as stored; a text includes its terminating NUL.
    std::string data;
};

/// Whether the text is in the REGEDIT4 format: empty, or with REGEDIT4 as its first line.
bool isSettingsText(std::string_view text);

/// Whether the key or a key below it has a heading. Keys are full paths: "HKEY_LOCAL_MACHINE\SOFTWARE\...".
bool hasKey(std::string_view text, std::string_view key);

/// Whether `key` is the key `other` or a key below it.
bool isSameOrBelow(std::string_view key, std::string_view other);

std::optional<Value> findValue(std::string_view text, std::string_view key, std::string_view name);

/// Returns the headings to append to the text to create the key and its missing parents below `root`; empty if none is
/// missing. Uses the text's own line endings.
std::string missingHeadings(std::string_view text, std::string_view root, std::string_view key);

} // namespace registry

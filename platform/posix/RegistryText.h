#pragma once

// The settings store as a text in the REGEDIT4 form, read as an import of the file on Windows would read it: headings
// and values are taken in order, later lines win, "[-key]" and "name"=- delete. Names compare without regard to case.
// Lines that are not understood are passed over, and nothing here changes a line that stands.

#include "platform/posix/win32.h"

#include <optional>
#include <string>
#include <string_view>

namespace registry {

struct Value {
    DWORD type = 0;
    /// As stored; a text is followed by its NUL.
    std::string data;
};

/// Whether the text is a store at all: empty, or begun by the line REGEDIT4.
bool isSettingsText(std::string_view text);

/// Whether the key, or one below it, has a heading. Keys are full paths: "HKEY_LOCAL_MACHINE\SOFTWARE\...".
bool hasKey(std::string_view text, std::string_view key);

/// Whether a key is another key or one below it.
bool isSameOrBelow(std::string_view key, std::string_view other);

std::optional<Value> findValue(std::string_view text, std::string_view key, std::string_view name);

/// What to append to the text so that it has the key and those of the key's parents that lie below `root`; empty when
/// it has them all. Follows the text's own line ends.
std::string missingHeadings(std::string_view text, std::string_view root, std::string_view key);

} // namespace registry

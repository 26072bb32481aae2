#pragma once

#include "platform/win32.h"

#include <vector>

/// An entry of a version resource's translation table: the language and code page of a string table.
struct Translation {
    WORD language;
    WORD codePage;
};

/// Returns the entry that best matches the user's language. In order of preference: the same language, the same primary
/// language, the neutral language, English, the first entry.
/// @return null if the table is empty
const Translation* bestTranslation(const std::vector<Translation>& table, LANGID user);

#pragma once

#include <string>
#include <vector>

// The settings as they are stored, whether the module reads them or not; one source per system implements it.

namespace spm {

/// The full paths of all values in the settings file, keys and names; on Windows, of those in the keys that settings
/// may have been put into.
std::vector<std::string> storedValues();

/// The settings file's text; empty when there is none, or it can't be read.
std::string settingsText();

/// How a user gets the right to write to the place of the settings, without which none is read.
extern const char* const settingsRightAdvice;

} // namespace spm

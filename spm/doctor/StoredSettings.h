#pragma once

#include <string>
#include <vector>

// The settings as stored, including values that the module doesn't read. Each system has its own implementation.

namespace spm {

/// The full paths (key and name) of all values in the settings file; on Windows, of the values in all registry keys
/// that settings might have been stored in.
std::vector<std::string> storedValues();

/// The content of the settings file; empty if it can't be read, and always on Windows.
std::string settingsText();

/// How to get write permission for the settings: without it the module reads none.
extern const char* const settingsAccessAdvice;

} // namespace spm

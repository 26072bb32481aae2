#pragma once

#include <string>
#include <vector>

// The settings as they are stored, whether the module reads them or not; one source per system implements it.

namespace spm {

/// The name of a value, and the full path of the key that has it.
struct StoredValue {
    std::string key;
    std::string name;

    bool operator==(const StoredValue&) const = default;
};

/// All values in the settings file; on Windows, those in the keys that settings may have been put into.
std::vector<StoredValue> storedValues();

/// The settings file's text; empty when there is none, or it can't be read.
std::string settingsText();

/// How a user gets the right to write to the place of the settings.
extern const char* const settingsRightAdvice;

} // namespace spm

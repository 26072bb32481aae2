#include "module/SPMRegistry.h"
#include "spm/doctor/StoredSettings.h"

#include <array>
#include <windows.h>

namespace spm {

const char* const settingsAccessAdvice = "run the measuring program as administrator";

namespace {

void addValues(HKEY root, const std::string& rootName, const std::string& path, std::vector<std::string>& values) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return;
    std::array<char, 16'384> name{}; // Windows' limit
    auto length = static_cast<DWORD>(name.size());
    for (DWORD i = 0; RegEnumValueA(key, i, name.data(), &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++i) {
        values.push_back(rootName + path + '\\' + name.data());
        length = static_cast<DWORD>(name.size());
    }
    RegCloseKey(key);
}

} // namespace

std::string settingsText() {
    return "";
}

/// Looks in the module's keys and their parent, both for the machine and the user, and in the keys of 32-bit programs.
std::vector<std::string> storedValues() {
    std::vector<std::string> values;
    for (const std::string software : {"SOFTWARE\\", "SOFTWARE\\WOW6432Node\\"}) {
        for (const char* const path : {"Kestrova", "Kestrova\\SPM", "Kestrova\\SPM\\xrite i1 Pro3"}) {
            addValues(HKEY_LOCAL_MACHINE, "HKEY_LOCAL_MACHINE\\", software + path, values);
            addValues(HKEY_CURRENT_USER, "HKEY_CURRENT_USER\\", software + path, values);
        }
    }
    return values;
}

} // namespace spm

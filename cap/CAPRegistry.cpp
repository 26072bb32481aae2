#include "cap/CAPRegistry.h"

#include <array>

CAPRegistry::CAPRegistry(std::string subkey) {
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE", 0, KEY_READ | KEY_WRITE, &opened) != ERROR_SUCCESS) return;
    const OpenKey software(opened);
    if (RegCreateKeyA(software.get(), subkey.insert(0, "Kestrova\\").c_str(), &opened) == ERROR_SUCCESS)
        key.reset(opened);
}

std::uint32_t CAPRegistry::readNumber(const std::string& name, std::uint32_t defaultValue) const {
    if (key == nullptr) return defaultValue;
    DWORD number = 0;
    DWORD type = 0;
    DWORD size = sizeof number;
    const LSTATUS status =
        RegQueryValueExA(key.get(), name.c_str(), nullptr, &type, reinterpret_cast<LPBYTE>(&number), &size);
    return status == ERROR_SUCCESS && type == REG_DWORD ? number : defaultValue;
}

std::string CAPRegistry::readString(const std::string& name, const std::string& defaultValue) const {
    if (key == nullptr) return defaultValue;
    std::array<char, 1024> buffer{};
    DWORD type = 0;
    auto size = static_cast<DWORD>(buffer.size());
    const LSTATUS status =
        RegQueryValueExA(key.get(), name.c_str(), nullptr, &type, reinterpret_cast<LPBYTE>(buffer.data()), &size);
    if (status != ERROR_SUCCESS || type != REG_SZ || size == 0) return defaultValue;
    buffer[size - 1] = '\0';
    return buffer.data();
}

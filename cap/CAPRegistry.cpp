#include "cap/CAPRegistry.h"

#include "platform/RegistryPlace.h"

#include <array>
#include <utility>

namespace {

constexpr const char* companyKey = "Kestrova\\";

} // namespace

CAPRegistry::CAPRegistry(std::string subkey) {
    const std::string path = companyKey + std::move(subkey);
    OpenKey software;
    if (openSoftware(software) != ERROR_SUCCESS) return;
    HKEY opened = nullptr;
    if (RegCreateKeyA(software.get(), path.c_str(), &opened) == ERROR_SUCCESS) key.reset(opened);
}

CAPRegistry::~CAPRegistry() = default;

std::uint32_t CAPRegistry::readNumber(const std::string& name, std::uint32_t defaultValue) const {
    return findNumber(name).value_or(defaultValue);
}

std::string CAPRegistry::readString(const std::string& name, const std::string& defaultValue) const {
    return findString(name).value_or(defaultValue);
}

std::optional<std::uint32_t> CAPRegistry::findNumber(const std::string& name) const {
    if (key == nullptr) return std::nullopt;
    DWORD number = 0;
    DWORD type = 0;
    DWORD size = sizeof number;
    const LSTATUS status =
        RegQueryValueExA(key.get(), name.c_str(), nullptr, &type, reinterpret_cast<LPBYTE>(&number), &size);
    return status == ERROR_SUCCESS && type == REG_DWORD ? std::optional<std::uint32_t>(number) : std::nullopt;
}

std::optional<std::string> CAPRegistry::findString(const std::string& name) const {
    if (key == nullptr) return std::nullopt;
    std::array<char, 1024> buffer{};
    DWORD type = 0;
    auto size = static_cast<DWORD>(buffer.size());
    const LSTATUS status =
        RegQueryValueExA(key.get(), name.c_str(), nullptr, &type, reinterpret_cast<LPBYTE>(buffer.data()), &size);
    if (status != ERROR_SUCCESS || type != REG_SZ || size == 0) return std::nullopt;
    buffer[size - 1] = '\0';
    return buffer.data();
}

bool CAPRegistry::hasValue(const std::string& name) const {
    return key != nullptr &&
           RegQueryValueExA(key.get(), name.c_str(), nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

CAPRegistry::Access CAPRegistry::access() {
    OpenKey software;
    const LSTATUS status = openSoftware(software);
    if (status == ERROR_SUCCESS) return Access::granted;
    return status == ERROR_ACCESS_DENIED ? Access::denied : Access::failed;
}

std::string CAPRegistry::place() {
    return registryPlace();
}

std::string CAPRegistry::pathOf(const std::string& subkey) {
    return "HKEY_LOCAL_MACHINE\\SOFTWARE\\" + (companyKey + subkey);
}

LSTATUS CAPRegistry::openSoftware(OpenKey& software) {
    HKEY opened = nullptr;
    const LSTATUS status = RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE", 0, KEY_READ | KEY_WRITE, &opened);
    if (status == ERROR_SUCCESS) software.reset(opened);
    return status;
}

#include "common/Environment.h"
#include "common/SharedLibrary.h"
#include "platform/win32.h"

#include <string>

namespace common {

std::filesystem::path programFolder() {
    return fileOf(reinterpret_cast<const void*>(&programFolder)).parent_path();
}

std::optional<std::filesystem::path> pathFromEnvironment(const char* variable) {
    const std::wstring name = std::filesystem::path(variable).native();
    constexpr DWORD maxLength = 32'767;
    std::wstring value(maxLength, L'\0');
    value.resize(GetEnvironmentVariableW(name.c_str(), value.data(), maxLength));
    if (value.empty()) return std::nullopt;
    return value;
}

} // namespace common

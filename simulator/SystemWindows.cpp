#include "platform/win32.h"
#include "simulator/System.h"

#include <fcntl.h>
#include <io.h>
#include <string>
#include <sys/stat.h>

namespace simulator {

namespace {

constexpr DWORD longestText = 32'767;

} // namespace

std::optional<std::filesystem::path> fileOfEnvironment(const char* variable) {
    const std::wstring name = std::filesystem::path(variable).native();
    std::wstring value(longestText, L'\0');
    value.resize(GetEnvironmentVariableW(name.c_str(), value.data(), longestText));
    if (value.empty()) return std::nullopt;
    return value;
}

std::FILE* createFile(const std::filesystem::path& path) {
    const int file =
        _wopen(path.c_str(), _O_CREAT | _O_EXCL | _O_WRONLY | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
    return file >= 0 ? _fdopen(file, "wb") : nullptr;
}

std::filesystem::path ownFile() {
    HMODULE library = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&ownFile), &library);
    std::wstring file(longestText, L'\0');
    file.resize(GetModuleFileNameW(library, file.data(), longestText));
    return file;
}

} // namespace simulator

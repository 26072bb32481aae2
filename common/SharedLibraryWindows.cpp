#include "common/Error.h"
#include "common/LibraryNames.h"
#include "common/SharedLibrary.h"
#include "platform/win32.h"

#include <string>
#include <system_error>

namespace common {

namespace {

/// Returns a path for LoadLibraryExW, which rejects slashes and appends ".dll" to a name without an extension; a final
/// dot prevents that.
std::wstring exactPath(const std::filesystem::path& path) {
    const std::wstring absolute = std::filesystem::absolute(path).make_preferred().native();
    return path.has_extension() ? absolute : absolute + L'.';
}

std::string adviceFor(DWORD error, const std::filesystem::path& path) {
    std::error_code ignored;
    if (error == ERROR_BAD_EXE_FORMAT) return "it is a 32-bit library or damaged; replace it with the 64-bit library";
    if (error != ERROR_MOD_NOT_FOUND) return "replace the library";
    if (!std::filesystem::exists(path, ignored)) return "put the library there";
    return "a library that it needs is missing; put it into " + path.parent_path().string();
}

} // namespace

void requireComplete(const std::filesystem::path& /*library*/) {}

// The library's dependencies are searched for beside it and in the system folder only, not in the working folder or on
// the path, where an attacker could plant a library of the same name.
SharedLibrary::SharedLibrary(const std::filesystem::path& path) {
    const std::wstring file = exactPath(path);
    DWORD earlierMode = 0;
    SetThreadErrorMode(SEM_FAILCRITICALERRORS, &earlierMode); // instead of showing a dialog box for damaged files
    library = LoadLibraryExW(file.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    const DWORD error = GetLastError();
    SetThreadErrorMode(earlierMode, nullptr);
    if (library != nullptr) return;
    const auto code = static_cast<int>(error);
    throw Error(path.string() + ": " + std::system_category().message(code) + " (error " + std::to_string(code) + ')',
                adviceFor(error, path));
}

SharedLibrary::~SharedLibrary() {
    FreeLibrary(static_cast<HMODULE>(library));
}

void* SharedLibrary::find(const char* name) const {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void* SharedLibrary::findInSdk(const char* name) const {
    HMODULE const sdk = GetModuleHandleA(sdkFileName);
    return sdk != nullptr ? reinterpret_cast<void*>(GetProcAddress(sdk, name)) : nullptr;
}

void* libraryOf(const void* address) {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<LPCWSTR>(address), &module);
    return module;
}

std::filesystem::path fileOf(const void* address) {
    void* const module = libraryOf(address);
    if (module == nullptr) return {};
    constexpr DWORD maxLength = 32'767;
    std::wstring file(maxLength, L'\0');
    file.resize(GetModuleFileNameW(static_cast<HMODULE>(module), file.data(), maxLength));
    return file;
}

} // namespace common

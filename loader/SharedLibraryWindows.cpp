#include "loader/SharedLibrary.h"
#include "platform/win32.h"

#include <string>
#include <system_error>

namespace loader {

namespace {

constexpr std::size_t longestPath = 32'767;

HMODULE handle(void* library) {
    return static_cast<HMODULE>(library);
}

/// The path of just this file: the system would add ".dll" to a name without an extension, and refuses slashes.
std::wstring exactPath(const std::filesystem::path& path) {
    const std::wstring absolute = std::filesystem::absolute(path).make_preferred().native();
    return path.has_extension() ? absolute : absolute + L'.';
}

/// Makes a damaged file an error, for the object's life, where the system would show a dialogue.
class NoDialogues {
public:
    NoDialogues() { SetThreadErrorMode(SEM_FAILCRITICALERRORS, &earlier); }
    NoDialogues(const NoDialogues&) = delete;
    NoDialogues& operator=(const NoDialogues&) = delete;
    ~NoDialogues() { SetThreadErrorMode(earlier, nullptr); }

private:
    DWORD earlier = 0;
};

} // namespace

// The libraries that this one needs are looked for beside it and among the system's own: never in the working folder
// or on the path, where anybody may have put one of the same name.
SharedLibrary::SharedLibrary(const std::filesystem::path& path) {
    const NoDialogues quiet;
    library = LoadLibraryExW(exactPath(path).c_str(), nullptr,
                             LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (library != nullptr) return;
    const auto error = static_cast<int>(GetLastError());
    throw LoadError(path.string() + ": " + std::system_category().message(error) + " (error " + std::to_string(error) +
                    ')');
}

SharedLibrary::~SharedLibrary() {
    FreeLibrary(handle(library));
}

void* SharedLibrary::find(const char* name) const {
    return reinterpret_cast<void*>(GetProcAddress(handle(library), name));
}

std::filesystem::path fileOf(const void* address) {
    HMODULE module = nullptr;
    if (GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           static_cast<LPCWSTR>(address), &module) == 0) {
        return {};
    }
    std::wstring file(longestPath, L'\0');
    file.resize(GetModuleFileNameW(module, file.data(), static_cast<DWORD>(file.size())));
    return file;
}

} // namespace loader

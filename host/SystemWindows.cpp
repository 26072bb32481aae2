#include "host/HostError.h"
#include "host/System.h"
#include "platform/win32.h"

#include <io.h>
#include <string>
#include <system_error>

namespace host {

namespace {

constexpr std::size_t longestPath = 32'767;

HMODULE handle(void* library) {
    return static_cast<HMODULE>(library);
}

void* addressOf(HMODULE library, const char* name) {
    return library != nullptr ? reinterpret_cast<void*>(GetProcAddress(library, name)) : nullptr;
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

const char* const moduleFileName = "spm_i1pro3.dll";
const char* const sdkFileName = "i1Pro364.dll";

std::filesystem::path programFolder() {
    std::wstring file(longestPath, L'\0');
    file.resize(GetModuleFileNameW(nullptr, file.data(), static_cast<DWORD>(file.size())));
    return std::filesystem::path(file).parent_path();
}

bool isTerminal(std::FILE* stream) {
    return _isatty(_fileno(stream)) != 0;
}

// The libraries that the module needs are looked for beside it and among the system's own: never in the working folder
// or on the path, where anybody may have put one of the same name.
SharedLibrary::SharedLibrary(const std::filesystem::path& path) {
    const NoDialogues quiet;
    library = LoadLibraryExW(exactPath(path).c_str(), nullptr,
                             LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (library != nullptr) return;
    const auto error = static_cast<int>(GetLastError());
    throw HostError("can't load the module " + path.string() + ": " + std::system_category().message(error) +
                    " (error " + std::to_string(error) +
                    "); name it with --module, and have the SDK library beside it");
}

SharedLibrary::~SharedLibrary() {
    FreeLibrary(handle(library));
}

void* SharedLibrary::find(const char* name) const {
    return addressOf(handle(library), name);
}

void* SharedLibrary::findInSdk(const char* name) const {
    return addressOf(GetModuleHandleA(sdkFileName), name);
}

} // namespace host

#include "common/LibraryFile.h"
#include "common/LibraryNames.h"
#include "common/SharedLibrary.h"
#include "platform/win32.h"

#include <cstddef>
#include <system_error>

namespace common {

namespace {

HMODULE handle(void* library) {
    return static_cast<HMODULE>(library);
}

/// Returns a path for LoadLibraryExW, which rejects slashes and appends ".dll" to a name without an extension; a final
/// dot prevents that.
std::wstring exactPath(const std::filesystem::path& path) {
    const std::wstring absolute = std::filesystem::absolute(path).make_preferred().native();
    return path.has_extension() ? absolute : absolute + L'.';
}

/// Prevents the system's dialog box for damaged files during the object's lifetime; loading one just fails.
class SuppressErrorDialogs {
public:
    SuppressErrorDialogs() { SetThreadErrorMode(SEM_FAILCRITICALERRORS, &earlier); }
    SuppressErrorDialogs(const SuppressErrorDialogs&) = delete;
    SuppressErrorDialogs& operator=(const SuppressErrorDialogs&) = delete;
    ~SuppressErrorDialogs() { SetThreadErrorMode(earlier, nullptr); }

private:
    DWORD earlier = 0;
};

} // namespace

LibraryDefect findHeaderDefect(std::string_view file) {
    using enum LibraryDefect;
    if (!file.empty() && !file.starts_with("MZ")) return notALibrary;
    const auto dos = readRecord<IMAGE_DOS_HEADER>(file, 0);
    const auto start = dos ? static_cast<std::uint64_t>(dos->e_lfanew) : 0;
    const auto header = readRecord<IMAGE_NT_HEADERS64>(file, start);
    if (!dos || !header) return truncated;
    const IMAGE_FILE_HEADER& kind = header->FileHeader;
    if (header->Signature != IMAGE_NT_SIGNATURE || (kind.Characteristics & IMAGE_FILE_DLL) == 0) return notALibrary;
    if (kind.Machine != IMAGE_FILE_MACHINE_AMD64) return wrongArchitecture;
    if (header->OptionalHeader.Magic != IMAGE_NT_OPTIONAL_HDR64_MAGIC) return wrongArchitecture;
    std::uint64_t next = start + offsetof(IMAGE_NT_HEADERS64, OptionalHeader) + kind.SizeOfOptionalHeader;
    for (int i = 0; i < kind.NumberOfSections; ++i, next += sizeof(IMAGE_SECTION_HEADER)) {
        const auto section = readRecord<IMAGE_SECTION_HEADER>(file, next);
        if (!section || !isInside(file, section->PointerToRawData, section->SizeOfRawData)) return truncated;
    }
    return none;
}

std::filesystem::path sdkOf(const std::filesystem::path& module) {
    return std::filesystem::absolute(module).parent_path() / sdkFileName;
}

// The library's dependencies are searched for beside it and in the system folder only, not in the working folder or on
// the path, where an attacker could plant a library of the same name.
SharedLibrary::SharedLibrary(const std::filesystem::path& path) {
    const SuppressErrorDialogs quiet;
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
    file.resize(GetModuleFileNameW(handle(module), file.data(), maxLength));
    return file;
}

} // namespace common

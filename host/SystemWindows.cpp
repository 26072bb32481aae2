#include "host/System.h"
#include "platform/win32.h"

#include <io.h>
#include <string>

namespace host {

namespace {

constexpr std::size_t longestPath = 32'767;

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

void* findInSdk(const loader::SharedLibrary& /*module*/, const char* name) {
    HMODULE const sdk = GetModuleHandleA(sdkFileName);
    return sdk != nullptr ? reinterpret_cast<void*>(GetProcAddress(sdk, name)) : nullptr;
}

} // namespace host

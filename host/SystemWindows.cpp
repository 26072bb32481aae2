#include "host/System.h"
#include "platform/win32.h"

#include <io.h>

namespace host {

const char* const moduleFileName = "spm_i1pro3.dll";
const char* const sdkFileName = "i1Pro364.dll";

std::filesystem::path programFolder() {
    return loader::fileOf(reinterpret_cast<const void*>(&programFolder)).parent_path();
}

bool isTerminal(std::FILE* stream) {
    return _isatty(_fileno(stream)) != 0;
}

std::string settingsPlace() {
    return "the registry";
}

void* findInSdk(const loader::SharedLibrary& /*module*/, const char* name) {
    HMODULE const sdk = GetModuleHandleA(sdkFileName);
    return sdk != nullptr ? reinterpret_cast<void*>(GetProcAddress(sdk, name)) : nullptr;
}

} // namespace host

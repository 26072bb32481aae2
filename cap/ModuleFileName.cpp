#include "cap/ModuleFileName.h"

#include <array>

std::string ModuleFileName(HMODULE module) {
    std::array<char, MAX_PATH> buffer{};
    const DWORD length = GetModuleFileNameA(module, buffer.data(), static_cast<DWORD>(buffer.size()));
    if (length >= buffer.size()) return {};
    return {buffer.data(), length};
}

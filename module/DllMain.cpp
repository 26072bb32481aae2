// The library's entry point. It only stores the module handle when the library is loaded: little else is safe there.

#include "module/ModuleHandle.h"

namespace {

HMODULE attachedModule = nullptr;

} // namespace

HMODULE moduleHandle() {
    return attachedModule;
}

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/) {
    if (reason == DLL_PROCESS_ATTACH) attachedModule = instance;
    return TRUE;
}

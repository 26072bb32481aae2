// The library's entry point. Keeping the handle is all that is done at load; nothing is done at unload.

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

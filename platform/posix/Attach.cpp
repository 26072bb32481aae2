// Calls DllMain when the library is loaded, as Windows does.

#include "platform/posix/win32.h"

/// The first byte of the library in memory; defined by the linker.
extern "C" [[gnu::visibility("hidden")]] const char __ehdr_start; // NOLINT(bugprone-reserved-identifier)

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

namespace {

[[gnu::constructor]] void attach() {
    auto* const base = const_cast<char*>(&__ehdr_start); // NOLINT(*-const-cast)
    DllMain(reinterpret_cast<HINSTANCE>(base), DLL_PROCESS_ATTACH, nullptr);
}

} // namespace

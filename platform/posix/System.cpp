// Modules, processes, threads, language and time.

#include "platform/posix/win32.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <dlfcn.h>
#include <link.h>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

std::string programFile() {
    std::array<char, PATH_MAX> path{};
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    return {path.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
}

/// The loader keeps the name with which dlopen was called, which may be relative to a former working folder. The folder
/// that it keeps (RTLD_DI_ORIGIN) is always absolute.
std::string libraryFile(HMODULE module) {
    Dl_info info{};
    void* library = nullptr;
    if (dladdr1(module, &info, &library, RTLD_DL_LINKMAP) == 0 || info.dli_fbase != module) return {};
    const std::string_view name = info.dli_fname;
    if (name.starts_with('/')) return std::string(name);
    std::array<char, 2UL * PATH_MAX> folder{}; // a working folder and a relative path, each of at most PATH_MAX
    if (dlinfo(library, RTLD_DI_ORIGIN, folder.data()) != 0) return {};
    return std::string(folder.data()) + '/' + std::string(name.substr(name.rfind('/') + 1));
}

} // namespace

DWORD GetModuleFileNameA(HMODULE module, char* name, DWORD size) {
    const std::string path = module == nullptr ? programFile() : libraryFile(module);
    if (path.empty()) return 0;
    const std::size_t length = std::min<std::size_t>(path.size(), size - 1);
    name[path.copy(name, length)] = '\0';
    return length < path.size() ? size : static_cast<DWORD>(length);
}

DWORD GetCurrentProcessId() {
    return static_cast<DWORD>(getpid());
}

DWORD GetCurrentThreadId() {
    return static_cast<DWORD>(gettid());
}

LANGID GetUserDefaultLangID() {
    return 0x0409;
}

void _ftime64(__timeb64* now) {
    tzset();
    *now = {std::time(nullptr), 0, static_cast<short>(timezone / 60), static_cast<short>(daylight)};
}

errno_t _localtime64_s(std::tm* local, const __time64_t* time) {
    const std::time_t seconds = *time;
    return localtime_r(&seconds, local) != nullptr ? 0 : errno;
}

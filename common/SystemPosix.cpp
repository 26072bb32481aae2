#include "common/System.h"

#include <cstdlib>
#include <dlfcn.h>

namespace common {

const char* const moduleFileName = "spm_i1pro3.so";
const char* const sdkFileName = "libi1Pro364.so";

SharedLibrary::SharedLibrary(const std::filesystem::path& path)
    : library(dlopen(std::filesystem::absolute(path).c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (library == nullptr) throw LoadError(path.string() + ": " + dlerror());
}

SharedLibrary::~SharedLibrary() {
    dlclose(library);
}

void* SharedLibrary::find(const char* name) const {
    return dlsym(library, name);
}

void* SharedLibrary::findInSdk(const char* name) const {
    return find(name);
}

std::filesystem::path fileOf(const void* address) {
    Dl_info info{};
    if (dladdr(address, &info) == 0) return {};
    return std::filesystem::absolute(info.dli_fname);
}

void throwForeign(const std::string& what) {
    throw std::runtime_error(what);
}

std::filesystem::path programFolder() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

std::optional<std::filesystem::path> fileOfEnvironment(const char* variable) {
    const char* const value = std::getenv(variable);
    if (value == nullptr || *value == '\0') return std::nullopt;
    return value;
}

std::FILE* createFile(const std::filesystem::path& path, const char* mode) {
    return std::fopen(path.c_str(), (std::string(mode) + "xe").c_str());
}

bool isSameName(const std::filesystem::path& one, const std::filesystem::path& other) {
    return one == other;
}

} // namespace common

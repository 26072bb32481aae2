#include "loader/SharedLibrary.h"

#include <dlfcn.h>

namespace loader {

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

std::filesystem::path fileOf(const void* address) {
    Dl_info info{};
    return dladdr(address, &info) != 0 ? info.dli_fname : "";
}

} // namespace loader

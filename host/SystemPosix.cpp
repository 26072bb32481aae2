#include "host/HostError.h"
#include "host/System.h"

#include <dlfcn.h>
#include <unistd.h>

namespace host {

const char* const moduleFileName = "spm_i1pro3.so";
const char* const sdkFileName = "libi1Pro364.so";

std::filesystem::path programFolder() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

bool isTerminal(std::FILE* stream) {
    return isatty(fileno(stream)) == 1;
}

SharedLibrary::SharedLibrary(const std::filesystem::path& path)
    : library(dlopen(std::filesystem::absolute(path).c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (library != nullptr) return;
    throw HostError("can't load the module " + path.string() + ": " + dlerror() +
                    "; name it with --module, and have the SDK library beside it");
}

SharedLibrary::~SharedLibrary() {
    dlclose(library);
}

void* SharedLibrary::find(const char* name) const {
    return dlsym(library, name);
}

void* SharedLibrary::findInSdk(const char* name) const {
    return dlsym(library, name); // looks into the libraries that this one needs, too
}

} // namespace host

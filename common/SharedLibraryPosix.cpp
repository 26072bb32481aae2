#include "common/Error.h"
#include "common/SharedLibrary.h"

#include <cstring>
#include <dlfcn.h>
#include <elf.h>
#include <fstream>
#include <system_error>

namespace common {

void requireComplete(const std::filesystem::path& library) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(library, ignored)) return; // reading a pipe might never end
    const std::uintmax_t size = std::filesystem::file_size(library, ignored);
    Elf64_Ehdr header{};
    std::ifstream(library, std::ios::binary).read(reinterpret_cast<char*>(&header), sizeof header);
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_ident[EI_CLASS] != ELFCLASS64) return;
    if (header.e_shoff + header.e_shnum * sizeof(Elf64_Shdr) <= size) return;
    throw Error(library.string() + ": it is truncated to " + std::to_string(size) + " bytes",
                "copy or install it again");
}

SharedLibrary::SharedLibrary(const std::filesystem::path& path) {
    requireComplete(path);
    library = dlopen(std::filesystem::absolute(path).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library != nullptr) return;
    const std::string reason = dlerror(); // begins with the file that can't be loaded, which may be another one
    throw Error(reason.starts_with('/') ? reason : path.string() + ": " + reason,
                "replace the library, or install what it needs");
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

void* libraryOf(const void* address) {
    Dl_info info{};
    return dladdr(address, &info) != 0 ? info.dli_fbase : nullptr;
}

std::filesystem::path fileOf(const void* address) {
    Dl_info info{};
    if (dladdr(address, &info) == 0) return {};
    return std::filesystem::absolute(info.dli_fname);
}

} // namespace common

#include "common/Files.h"
#include "common/LibraryFile.h"
#include "common/LibraryNames.h"
#include "common/SharedLibrary.h"

#include <cstdlib>
#include <dlfcn.h>
#include <elf.h>
#include <sstream>

/// The header of this program in memory; defined by the linker.
extern "C" [[gnu::visibility("hidden")]] const Elf64_Ehdr __ehdr_start; // NOLINT(bugprone-reserved-identifier)

namespace common {

LibraryDefect findHeaderDefect(std::string_view file) {
    using enum LibraryDefect;
    if (!file.empty() && !file.starts_with(ELFMAG)) return notALibrary;
    const auto header = readRecord<Elf64_Ehdr>(file, 0);
    if (!header) return truncated;
    if (header->e_ident[EI_CLASS] != ELFCLASS64 || header->e_machine != __ehdr_start.e_machine)
        return wrongArchitecture;
    if (header->e_type != ET_DYN) return notALibrary;
    for (std::uint64_t i = 0; i < header->e_phnum; ++i) {
        const auto segment = readRecord<Elf64_Phdr>(file, header->e_phoff + i * sizeof(Elf64_Phdr));
        if (!segment || !isInside(file, segment->p_offset, segment->p_filesz)) return truncated;
    }
    return isInside(file, header->e_shoff, header->e_shnum * sizeof(Elf64_Shdr)) ? none : truncated;
}

namespace {

/// Whether the loader picks a file that it finds on its search path. It skips those for another architecture.
bool isPickedByLoader(const std::filesystem::path& library) try {
    return findHeaderDefect(readFile(library)) != LibraryDefect::wrongArchitecture;
} catch (const std::system_error&) {
    return false;
}

} // namespace

std::filesystem::path sdkOf(const std::filesystem::path& module) {
    const char* const list = std::getenv("LD_LIBRARY_PATH");
    std::istringstream folders(list != nullptr ? list : "");
    for (std::string folder; std::getline(folders, folder, ':');) {
        std::filesystem::path sdk = std::filesystem::absolute(std::filesystem::path(folder) / sdkFileName);
        if (isPickedByLoader(sdk)) return sdk;
    }
    return std::filesystem::absolute(module).parent_path() / sdkFileName;
}

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

#include "common/LibraryFile.h"
#include "common/System.h"
#include "platform/win32.h"

#include <array>
#include <cstdlib>
#include <dlfcn.h>
#include <elf.h>
#include <sstream>
#include <string_view>

/// The header of this program in memory; defined by the linker.
extern "C" [[gnu::visibility("hidden")]] const Elf64_Ehdr __ehdr_start; // NOLINT(bugprone-reserved-identifier)

namespace common {

const char* const moduleFileName = "spm_i1pro3.so";
const char* const sdkFileName = "libi1Pro364.so";

namespace {

bool isForeign(const std::filesystem::path& library) {
    try {
        requireLibrary(library);
    } catch (const ForeignLibrary&) {
        return true;
    } catch (const LoadError&) {
        return false; // the system takes it, and fails
    }
    return false;
}

} // namespace

void requireLibrary(const std::filesystem::path& path) {
    LibraryFile file(path);
    const auto mark = file.read<std::array<char, SELFMAG>>(0);
    file.requireLibrary(std::string_view(mark.data(), mark.size()) == ELFMAG);
    const auto header = file.read<Elf64_Ehdr>(0);
    file.requireNative(header.e_ident[EI_CLASS] == ELFCLASS64 && header.e_machine == __ehdr_start.e_machine);
    file.requireLibrary(header.e_type == ET_DYN);
    for (std::uint64_t i = 0; i < header.e_phnum; ++i) {
        const auto segment = file.read<Elf64_Phdr>(header.e_phoff + i * sizeof(Elf64_Phdr));
        file.requireInside(segment.p_offset, segment.p_filesz);
    }
    file.requireInside(header.e_shoff, header.e_shnum * sizeof(Elf64_Shdr));
}

std::filesystem::path sdkOf(const std::filesystem::path& module) {
    const char* const list = std::getenv("LD_LIBRARY_PATH");
    std::istringstream folders(list != nullptr ? list : "");
    for (std::string folder; std::getline(folders, folder, ':');) {
        std::filesystem::path sdk = std::filesystem::absolute(std::filesystem::path(folder) / sdkFileName);
        if (doesExist(sdk) && !isForeign(sdk)) return sdk;
    }
    return std::filesystem::absolute(module).parent_path() / sdkFileName;
}

bool hasSingleByteForm(const std::filesystem::path& path) {
    return path.native().size() < MAX_PATH;
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

std::FILE* createFile(const std::filesystem::path& path) {
    return std::fopen(path.c_str(), "wxe");
}

} // namespace common

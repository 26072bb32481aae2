// Version resources of ELF files. The block that GetFileVersionInfoA fills is a copy of the section, followed by an
// entry without a path.

#include "platform/posix/EqualIgnoringCase.h"
#include "platform/posix/VersionEntry.h"
#include "platform/posix/win32.h"

#include <cstring>
#include <elf.h>
#include <fstream>
#include <string>

namespace {

constexpr std::size_t maxSize = 0x10000;

/// Reads a record; all zero if the file is too short.
template <class Record>
Record readRecord(std::istream& file, std::uint64_t offset) {
    Record record{};
    file.seekg(static_cast<std::streamoff>(offset)).read(reinterpret_cast<char*>(&record), sizeof record);
    return record;
}

std::string readBytes(std::istream& file, std::uint64_t offset, std::uint64_t size) {
    std::string bytes(size, '\0');
    file.seekg(static_cast<std::streamoff>(offset)).read(bytes.data(), static_cast<std::streamsize>(size));
    return file ? bytes : "";
}

/// Returns the content of the section with the version resource, empty if the file has none.
std::string readSection(const char* path) {
    std::ifstream file(path, std::ios::binary);
    const auto header = readRecord<Elf64_Ehdr>(file, 0);
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_ident[EI_CLASS] != ELFCLASS64) return {};
    const auto sectionAt = [&](unsigned index) {
        return readRecord<Elf64_Shdr>(file, header.e_shoff + index * sizeof(Elf64_Shdr));
    };
    const std::uint64_t names = sectionAt(header.e_shstrndx).sh_offset;
    for (unsigned i = 0; i < header.e_shnum; ++i) {
        const Elf64_Shdr section = sectionAt(i);
        const std::string name = readBytes(file, names + section.sh_name, sizeof SPM_VERSION_SECTION);
        if (name.c_str() == std::string_view(SPM_VERSION_SECTION) && section.sh_size <= maxSize)
            return readBytes(file, section.sh_offset, section.sh_size);
    }
    return {};
}

} // namespace

DWORD GetFileVersionInfoSizeA(const char* path, DWORD* /*ignored*/) {
    const std::string section = readSection(path);
    return section.empty() ? 0 : static_cast<DWORD>(section.size() + sizeof(VersionEntry));
}

BOOL GetFileVersionInfoA(const char* path, DWORD /*ignored*/, DWORD size, void* block) {
    const std::string section = readSection(path);
    if (section.empty() || size < section.size() + sizeof(VersionEntry)) return FALSE;
    std::memset(block, 0, size);
    std::memcpy(block, section.data(), section.size());
    return TRUE;
}

BOOL VerQueryValueA(const void* block, const char* path, LPVOID* value, UINT* length) {
    const auto* entry = static_cast<const VersionEntry*>(block);
    while (entry->path[0] != '\0' && !equalIgnoringCase(entry->path.data(), path)) {
        ++entry;
    }
    if (entry->path[0] == '\0') return FALSE;
    *value = const_cast<char*>(entry->value.data()); // NOLINT(*-const-cast): the system's signature
    *length = entry->length;
    return TRUE;
}

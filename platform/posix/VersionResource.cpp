// Version resources of ELF files. The block that GetFileVersionInfoA fills is a copy of the section, followed by an
// entry without a path.

#include "platform/posix/EqualIgnoringCase.h"
#include "platform/posix/VersionEntry.h"
#include "platform/posix/win32.h"

#include <cstring>
#include <elf.h>
#include <fstream>
#include <vector>

namespace {

constexpr std::size_t maxSize = 0x10000;

/// Reads a number of records from a file; all zero where the file ends.
template <class Record>
std::vector<Record> readRecords(std::istream& file, std::uint64_t offset, std::size_t number) {
    std::vector<Record> records(number);
    const auto size = static_cast<std::streamsize>(number * sizeof(Record));
    file.seekg(static_cast<std::streamoff>(offset)).read(reinterpret_cast<char*>(records.data()), size);
    return records;
}

/// Returns the content of the section with the version resource, empty if the file has none.
std::vector<char> readSection(const char* path) {
    std::ifstream file(path, std::ios::binary);
    const Elf64_Ehdr header = readRecords<Elf64_Ehdr>(file, 0, 1).front();
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_ident[EI_CLASS] != ELFCLASS64) return {};
    const auto sections = readRecords<Elf64_Shdr>(file, header.e_shoff, header.e_shnum);
    if (header.e_shstrndx >= sections.size()) return {};
    const std::vector<char> names = readRecords<char>(file, sections[header.e_shstrndx].sh_offset, maxSize);
    file.clear(); // the names can be the file's last bytes
    for (const Elf64_Shdr& section : sections) {
        if (section.sh_name + sizeof SPM_VERSION_SECTION > names.size() || section.sh_size > maxSize) continue;
        if (std::strcmp(&names[section.sh_name], SPM_VERSION_SECTION) != 0) continue;
        auto content = readRecords<char>(file, section.sh_offset, section.sh_size);
        return file ? content : std::vector<char>();
    }
    return {};
}

} // namespace

DWORD GetFileVersionInfoSizeA(const char* path, DWORD* /*ignored*/) {
    const std::vector<char> section = readSection(path);
    return section.empty() ? 0 : static_cast<DWORD>(section.size() + sizeof(VersionEntry));
}

BOOL GetFileVersionInfoA(const char* path, DWORD /*ignored*/, DWORD size, void* block) {
    const std::vector<char> section = readSection(path);
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

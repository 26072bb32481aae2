#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <elf.h>
#include <random>
#include <sstream>
#include <sys/fsuid.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

const std::string lineEnd = "\n";
const std::string programExtension;

namespace {

const std::string variableName = "SPM_REGISTRY";
const std::string software = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\";

} // namespace

void setVariable(const std::string& name, const std::optional<std::string>& value) {
    if (value) {
        setenv(name.c_str(), value->c_str(), 1);
    } else {
        unsetenv(name.c_str());
    }
    tzset();
}

std::string quoted(const std::string& word) {
    return '\'' + word + '\'';
}

int execute(const std::string& command) {
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Writes an ELF file with three sections, the last of which contains the resource.
void writeLibrary(const fs::path& path, const std::string& resource) {
    constexpr std::string_view names("\0.names\0.rsrc\0", 14);
    constexpr std::size_t begin = sizeof(Elf64_Ehdr) + 3 * sizeof(Elf64_Shdr);
    Elf64_Ehdr header{};
    std::memcpy(header.e_ident, ELFMAG, SELFMAG);
    header.e_ident[EI_CLASS] = ELFCLASS64;
    header.e_shoff = sizeof header;
    header.e_shentsize = sizeof(Elf64_Shdr);
    header.e_shnum = 3;
    header.e_shstrndx = 1;
    std::array<Elf64_Shdr, 3> sections{};
    sections[1].sh_name = 1;
    sections[1].sh_offset = begin;
    sections[1].sh_size = names.size();
    sections[2].sh_name = 8;
    sections[2].sh_offset = begin + names.size();
    sections[2].sh_size = resource.size();
    std::string file(reinterpret_cast<const char*>(&header), sizeof header);
    file.append(reinterpret_cast<const char*>(sections.data()), sizeof sections);
    writeFile(path, file.append(names).append(resource));
}

Settings::Settings()
    : place(fs::temp_directory_path() / ("spm test " + std::to_string(std::random_device{}()) + ".reg")) {
    setVariable(variableName, place);
}

Settings::~Settings() {
    setVariable(variableName, std::nullopt);
    clear();
}

void Settings::set(const std::string& key, const std::string& name, std::uint32_t type, const std::string& data) {
    std::ostringstream value;
    for (const char byte : data) {
        value << (value.tellp() > 0 ? "," : "") << std::hex << unsigned{static_cast<unsigned char>(byte)};
    }
    const std::string before = readFile(place);
    writeFile(place, (before.empty() ? "REGEDIT4\n" : before) + software + key + "]\n\"" + name + "\"=hex(" +
                         std::to_string(type) + "):" + value.str() + "\n");
}

void Settings::denyWriting() {
    constexpr uid_t nobody = 65534;
    if (!fs::exists(place)) writeFile(place, "");
    fs::permissions(place, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    setfsuid(nobody);
}

void Settings::clear() {
    setfsuid(geteuid());
    fs::remove(place);
}

// Version resources of ELF files: the tree of VS_VERSION_INFO (see VersionBlock.h) in a section named ".rsrc".
// Files are not trusted: each offset and length is checked against its container before it is used.
//
// The caller of GetFileVersionInfoA provides a block for the tree, padded to 4 bytes, followed by a buffer of the same
// size. VerQueryValueA converts a text at offset p of the tree to Latin-1 at offset p of that buffer.

#include "platform/posix/EqualIgnoringCase.h"
#include "platform/posix/win32.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <elf.h>
#include <fcntl.h>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::string_view sectionName = ".rsrc";
constexpr std::size_t maxNameTableSize = 0xFFFF; // for the names of all sections
constexpr std::size_t maxTreeSize = 0xFFFF;      // a node's length is a 16-bit number
constexpr std::size_t headerSize = 6;            // length, value length, type

class File {
public:
    explicit File(const char* path) : descriptor(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() {
        if (descriptor >= 0) close(descriptor);
    }

    /// Reads exactly `size` bytes.
    /// @return false if there are fewer
    bool read(std::uint64_t offset, void* target, std::size_t size) const {
        return pread(descriptor, target, size, static_cast<off_t>(offset)) == static_cast<ssize_t>(size);
    }

    /// Reads at most `size` bytes.
    std::string readUpTo(std::uint64_t offset, std::size_t size) const {
        std::string bytes(size, '\0');
        const ssize_t length = pread(descriptor, bytes.data(), size, static_cast<off_t>(offset));
        bytes.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
        return bytes;
    }

    template <class Record>
    std::optional<Record> read(std::uint64_t offset) const {
        Record record{};
        return read(offset, &record, sizeof record) ? std::optional(record) : std::nullopt;
    }

private:
    int descriptor;
};

WORD wordAt(const char* bytes) {
    WORD word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

std::size_t aligned(std::size_t offset) {
    return (offset + 3) / 4 * 4;
}

std::optional<Elf64_Shdr> findSection(const File& file) {
    const auto header = file.read<Elf64_Ehdr>(0);
    if (!header || std::memcmp(header->e_ident, ELFMAG, SELFMAG) != 0) return std::nullopt;
    if (header->e_ident[EI_CLASS] != ELFCLASS64 || header->e_shentsize != sizeof(Elf64_Shdr)) return std::nullopt;
    std::vector<Elf64_Shdr> sections(header->e_shnum);
    if (!file.read(header->e_shoff, sections.data(), sections.size() * sizeof(Elf64_Shdr))) return std::nullopt;
    if (header->e_shstrndx >= sections.size()) return std::nullopt;
    const Elf64_Shdr& table = sections[header->e_shstrndx];
    const std::string names = file.readUpTo(table.sh_offset, std::min<std::size_t>(table.sh_size, maxNameTableSize));
    const auto found = std::find_if(sections.begin(), sections.end(), [&](const Elf64_Shdr& section) {
        return section.sh_name < names.size() && names.c_str() + section.sh_name == sectionName;
    });
    return found != sections.end() ? std::optional(*found) : std::nullopt;
}

/// Returns the file's version tree, truncated to the length given in its root node; empty if there is none.
std::vector<char> readTree(const char* path) {
    const File file(path);
    const auto section = findSection(file);
    if (!section || section->sh_size < headerSize || section->sh_size > maxTreeSize) return {};
    std::vector<char> tree(section->sh_size);
    if (!file.read(section->sh_offset, tree.data(), tree.size())) return {};
    const std::size_t length = wordAt(tree.data());
    if (length < headerSize || length > tree.size()) return {};
    tree.resize(length);
    return tree;
}

/// A node of a tree, as offsets that are within the tree.
struct Node {
    std::size_t end;
    std::size_t name;
    std::size_t nameLength;
    std::size_t value;
    std::size_t valueSize;
    bool isText;
};

char toLatin1(WORD unit) {
    return unit <= 0xFF ? static_cast<char>(unit) : '?';
}

std::optional<Node> parseNode(const char* tree, std::size_t offset, std::size_t limit) {
    if (offset + headerSize > limit) return std::nullopt;
    Node node{offset + wordAt(tree + offset), offset + headerSize, 0, 0, 0, wordAt(tree + offset + 4) == 1};
    if (node.end > limit) return std::nullopt;
    std::size_t position = node.name;
    for (; position + 2 <= node.end && wordAt(tree + position) != 0; position += 2) {
        ++node.nameLength;
    }
    if (position + 2 > node.end) return std::nullopt;
    node.value = std::min(aligned(position + 2), node.end);
    const std::size_t valueSize = std::size_t{wordAt(tree + offset + 2)} * (node.isText ? 2 : 1);
    node.valueSize = std::min(valueSize, node.end - node.value);
    return node;
}

bool isNamed(const char* tree, const Node& node, std::string_view name) {
    if (node.nameLength != name.size()) return false;
    std::string text(name.size(), '\0');
    for (std::size_t i = 0; i < text.size(); ++i) {
        text[i] = toLatin1(wordAt(tree + node.name + 2 * i));
    }
    return equalIgnoringCase(text, name);
}

std::optional<Node> findChild(const char* tree, const Node& parent, std::string_view name) {
    std::size_t offset = aligned(parent.value + parent.valueSize);
    while (auto child = parseNode(tree, offset, parent.end)) {
        if (isNamed(tree, *child, name)) return child;
        offset = aligned(child->end);
    }
    return std::nullopt;
}

std::optional<Node> findNode(const char* tree, std::string_view path) {
    std::optional<Node> node = parseNode(tree, 0, wordAt(tree));
    while (node && !path.empty()) {
        path.remove_prefix(path.starts_with('\\') ? 1 : 0);
        const std::size_t end = std::min(path.find('\\'), path.size());
        if (end > 0) node = findChild(tree, *node, path.substr(0, end));
        path.remove_prefix(end);
    }
    return node;
}

/// Converts a text to Latin-1 and returns its length.
UINT convertText(const char* tree, const Node& node, char* target) {
    const std::size_t length = node.valueSize / 2;
    for (std::size_t i = 0; i < length; ++i) {
        target[i] = toLatin1(wordAt(tree + node.value + 2 * i));
    }
    return static_cast<UINT>(length);
}

} // namespace

DWORD GetFileVersionInfoSizeA(const char* path, DWORD* /*ignored*/) {
    return static_cast<DWORD>(2 * aligned(readTree(path).size()));
}

BOOL GetFileVersionInfoA(const char* path, DWORD /*ignored*/, DWORD size, void* block) {
    const std::vector<char> tree = readTree(path);
    if (tree.empty() || size < 2 * aligned(tree.size())) return FALSE;
    std::memcpy(block, tree.data(), tree.size());
    return TRUE;
}

BOOL VerQueryValueA(const void* block, const char* path, LPVOID* value, UINT* length) {
    // The caller allocated the block writable; only the parameter is const.
    char* const tree = const_cast<char*>(static_cast<const char*>(block)); // NOLINT(*-const-cast)
    const std::optional<Node> node = findNode(tree, path);
    if (!node) return FALSE;
    if (node->isText) {
        char* const text = tree + aligned(wordAt(tree)) + node->value;
        *length = convertText(tree, *node, text);
        *value = text;
    } else {
        *length = static_cast<UINT>(node->valueSize);
        *value = tree + node->value;
    }
    return TRUE;
}

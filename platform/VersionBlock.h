#pragma once

// Builds the binary form of a version resource, the tree of VS_VERSION_INFO. A node consists of a length, a value
// length, a type (0 binary, 1 text), a UTF-16 name, a value and child nodes, each part aligned to 4 bytes.
// Format: "VS_VERSIONINFO structure" and the structures that it refers to, in the Windows API reference.
//
// Everything is constexpr, so that a library can contain its resource as a constant.

#include "platform/win32.h"

#include <array>
#include <bit>
#include <span>
#include <string_view>

namespace version_block {

struct Text {
    std::string_view name;
    std::string_view value;
};

struct Table {
    WORD language;
    WORD codePage;
    std::span<const Text> texts;
};

/// The bytes of a resource, at most 8192.
class Block {
public:
    constexpr const char* begin() const { return bytes.data(); }
    constexpr const char* end() const { return bytes.data() + length; }
    constexpr std::size_t size() const { return length; }

    /// Begins a node. Everything appended before closeNode belongs to its value and children.
    /// @return the node, to pass to closeNode
    constexpr std::size_t openNode(std::string_view name, bool isText, std::size_t valueLength) {
        align();
        const std::size_t node = length;
        appendWord(0);
        appendWord(valueLength);
        appendWord(isText ? 1 : 0);
        appendText(name);
        align();
        return node;
    }

    constexpr void closeNode(std::size_t node) { putWord(node, length - node); }

    constexpr void appendTextNode(const Text& text) {
        const std::size_t node = openNode(text.name, true, text.value.size() + 1);
        appendText(text.value);
        closeNode(node);
    }

    constexpr void appendBytes(std::span<const char> added) {
        for (const char byte : added) {
            bytes[length++] = byte;
        }
    }

    constexpr void appendWord(std::size_t word) {
        length += 2;
        putWord(length - 2, word);
    }

private:
    constexpr void putWord(std::size_t offset, std::size_t word) {
        bytes[offset] = static_cast<char>(word & 0xFF);
        bytes[offset + 1] = static_cast<char>(word >> 8 & 0xFF);
    }

    /// Appends a Latin-1 text as NUL-terminated UTF-16.
    constexpr void appendText(std::string_view text) {
        for (const char character : text) {
            appendWord(static_cast<unsigned char>(character));
        }
        appendWord(0);
    }

    constexpr void align() { length = (length + 3) / 4 * 4; }

    std::array<char, 8192> bytes{};
    std::size_t length = 0;
};

/// Returns a string table's name: language and code page as eight hexadecimal digits.
constexpr std::array<char, 8> tableName(const Table& table) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::array<char, 8> name{};
    unsigned number = unsigned{table.language} << 16 | table.codePage;
    for (std::size_t i = name.size(); i-- > 0; number >>= 4) {
        name[i] = digits[number & 0xF];
    }
    return name;
}

using FixedPart = std::array<char, sizeof(VS_FIXEDFILEINFO)>;

constexpr FixedPart fixedPart(const VS_FIXEDFILEINFO& info) {
    return std::bit_cast<FixedPart>(info);
}

/// Builds a complete version resource.
/// @param fixedValue  the bytes of the fixed part, normally from fixedPart()
constexpr Block build(std::span<const char> fixedValue, std::span<const Table> tables) {
    Block block;
    const std::size_t root = block.openNode("VS_VERSION_INFO", false, fixedValue.size());
    block.appendBytes(fixedValue);

    const std::size_t strings = block.openNode("StringFileInfo", true, 0);
    for (const Table& table : tables) {
        const auto name = tableName(table);
        const std::size_t node = block.openNode({name.data(), name.size()}, true, 0);
        for (const Text& text : table.texts) {
            block.appendTextNode(text);
        }
        block.closeNode(node);
    }
    block.closeNode(strings);

    const std::size_t variables = block.openNode("VarFileInfo", true, 0);
    const std::size_t translation = block.openNode("Translation", false, 4 * tables.size());
    for (const Table& table : tables) {
        block.appendWord(table.language);
        block.appendWord(table.codePage);
    }
    block.closeNode(translation);
    block.closeNode(variables);

    block.closeNode(root);
    return block;
}

} // namespace version_block

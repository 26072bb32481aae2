#pragma once

// Builds the binary form of a version resource, the tree of VS_VERSION_INFO: nodes of a length, a value length, a type
// (0 binary, 1 text), a UTF-16 name, a value and children, each part aligned to 4 bytes.
// Format: "VS_VERSIONINFO structure" and the structures that it refers to, in the Windows API reference.
//
// All of it runs at compile time, so that a library can carry its resource as a constant.

#include "platform/posix/win32.h"

#include <array>
#include <bit>
#include <string_view>
#include <vector>

namespace version_block {

using Bytes = std::vector<char>;

struct Text {
    std::string_view name;
    std::string_view value;
};

struct Table {
    WORD language;
    WORD codePage;
    std::vector<Text> texts;
};

constexpr void align(Bytes& bytes) {
    bytes.resize((bytes.size() + 3) / 4 * 4);
}

constexpr void putWord(Bytes& bytes, std::size_t offset, std::size_t word) {
    bytes[offset] = static_cast<char>(word & 0xFF);
    bytes[offset + 1] = static_cast<char>(word >> 8 & 0xFF);
}

constexpr void appendWord(Bytes& bytes, std::size_t word) {
    bytes.resize(bytes.size() + 2);
    putWord(bytes, bytes.size() - 2, word);
}

/// Appends a Latin-1 text as UTF-16 with its NUL.
constexpr void appendText(Bytes& bytes, std::string_view text) {
    for (const char character : text) {
        appendWord(bytes, static_cast<unsigned char>(character));
    }
    appendWord(bytes, 0);
}

enum class Type : WORD { binary, text };

/// A node without children.
constexpr Bytes node(std::string_view name, Type type, const Bytes& value = {}) {
    Bytes bytes(2);
    appendWord(bytes, type == Type::text ? value.size() / 2 : value.size());
    appendWord(bytes, static_cast<WORD>(type));
    appendText(bytes, name);
    align(bytes);
    bytes.insert(bytes.end(), value.begin(), value.end());
    putWord(bytes, 0, bytes.size());
    return bytes;
}

constexpr void adopt(Bytes& parent, const Bytes& child) {
    align(parent);
    parent.insert(parent.end(), child.begin(), child.end());
    putWord(parent, 0, parent.size());
}

constexpr Bytes fixedPart(const VS_FIXEDFILEINFO& fixedInfo) {
    const auto raw = std::bit_cast<std::array<char, sizeof fixedInfo>>(fixedInfo);
    return {raw.begin(), raw.end()};
}

/// The string table's name: language and code page as eight hexadecimal digits.
constexpr std::array<char, 8> tableName(const Table& table) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::array<char, 8> name{};
    unsigned number = unsigned{table.language} << 16 | table.codePage;
    for (std::size_t i = name.size(); i-- > 0; number >>= 4) {
        name[i] = digits[number & 0xF];
    }
    return name;
}

/// A whole version resource.
/// @param fixedValue  the fixed part as bytes, normally fixedPart()
constexpr Bytes build(const Bytes& fixedValue, const std::vector<Table>& tables) {
    Bytes strings = node("StringFileInfo", Type::text);
    Bytes translations;
    for (const Table& table : tables) {
        const auto name = tableName(table);
        Bytes tableNode = node({name.data(), name.size()}, Type::text);
        for (const Text& text : table.texts) {
            Bytes value;
            appendText(value, text.value);
            adopt(tableNode, node(text.name, Type::text, value));
        }
        adopt(strings, tableNode);
        appendWord(translations, table.language);
        appendWord(translations, table.codePage);
    }
    Bytes variables = node("VarFileInfo", Type::text);
    adopt(variables, node("Translation", Type::binary, translations));
    Bytes root = node("VS_VERSION_INFO", Type::binary, fixedValue);
    adopt(root, strings);
    adopt(root, variables);
    return root;
}

} // namespace version_block

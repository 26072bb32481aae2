#include "common/Text.h"

#include "common/Error.h"

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>

namespace common {

namespace {

/// Returns the length of the valid UTF-8 sequence at the beginning of a text; 0 if there is none.
std::size_t sequenceLength(std::string_view text) {
    const auto byteAt = [&](std::size_t i) { return i < text.size() ? static_cast<std::uint8_t>(text[i]) : 0; };
    const int first = byteAt(0);
    if (first < 0x80) return text.empty() ? 0 : 1;
    if (first < 0xC2 || first > 0xF4) return 0;
    const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    // The range of the second byte excludes overlong sequences, surrogates and codes above U+10FFFF.
    const int lowest = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    const int highest = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    if (byteAt(1) < lowest || byteAt(1) > highest) return 0;
    for (std::size_t i = 2; i < length; ++i) {
        if ((byteAt(i) & 0xC0) != 0x80) return 0;
    }
    return length;
}

} // namespace

std::size_t findInvalidUtf8(std::string_view text) {
    std::size_t position = 0;
    while (const std::size_t length = sequenceLength(text.substr(position))) {
        position += length;
    }
    return position;
}

void requireUtf8(std::string_view text, std::string_view description) {
    const std::size_t invalid = std::min(findInvalidUtf8(text), text.find('\0'));
    if (invalid == text.size()) return;
    const std::string_view before = text.substr(0, invalid);
    throw Error(fmt::format("{}, line {}, byte {}: {} (0x{:02X})", description,
                            1 + std::count(before.begin(), before.end(), '\n'), invalid - before.rfind('\n'),
                            text[invalid] == '\0' ? "a NUL byte is not allowed" : "this is not UTF-8",
                            static_cast<std::uint8_t>(text[invalid])),
                "save it as UTF-8");
}

std::string printable(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const std::string_view character = text.substr(0, std::max<std::size_t>(sequenceLength(text), 1));
        const bool isControl = character < " " || (character >= "\x7F" && character <= "\u009F");
        shown += isControl ? "\uFFFD" : character;
        text.remove_prefix(character.size());
    }
    return shown;
}

} // namespace common

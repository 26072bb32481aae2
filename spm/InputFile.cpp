#include "spm/InputFile.h"

#include "common/System.h"
#include "spm/Error.h"

#include <algorithm>
#include <array>
#include <bit>
#include <fmt/format.h>
#include <system_error>

namespace spm {

namespace {

/// The length of the UTF-8 sequence at the beginning of a text; 0 when it is overlong, a surrogate, above U+10FFFF or
/// not UTF-8 at all.
std::size_t sequenceLength(std::string_view text) {
    constexpr std::array<std::uint32_t, 5> least{0, 0, 0x80, 0x800, 0x10000};
    const auto first = static_cast<std::uint8_t>(text.front());
    if (first < 0x80) return 1;
    const auto length = static_cast<std::size_t>(std::countl_one(first));
    if (length < 2 || length >= least.size() || length > text.size()) return 0;
    std::uint32_t code = first & (0x7FU >> length);
    for (const char next : text.substr(1, length - 1)) {
        const auto byte = static_cast<std::uint8_t>(next);
        if ((byte & 0xC0U) != 0x80) return 0;
        code = code << 6U | (byte & 0x3FU);
    }
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    return code < least.at(length) || code > 0x10FFFF || isSurrogate ? 0 : length;
}

} // namespace

std::string readInput(const std::filesystem::path& file, std::string_view what) try {
    return common::readFile(file);
} catch (const std::system_error&) {
    throw Error(fmt::format("can't read {} {}; name a CSV, CGATS or JSON file", what, file.string()));
}

void requireUtf8(std::string_view text, std::string_view description) {
    if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF")) {
        throw Error(fmt::format("{} is UTF-16; save it as UTF-8", description));
    }
    std::size_t length = 0;
    for (std::size_t i = 0; i < text.size(); i += length) {
        length = text[i] == '\0' ? 0 : sequenceLength(text.substr(i));
        if (length > 0) continue;
        const std::string_view before = text.substr(0, i);
        throw Error(fmt::format("{}, line {}, byte {}: {} (0x{:02X}); save it as UTF-8", description,
                                1 + std::count(before.begin(), before.end(), '\n'), i - before.rfind('\n'),
                                text[i] == '\0' ? "a NUL byte, which no text has" : "this is not UTF-8",
                                static_cast<std::uint8_t>(text[i])));
    }
}

} // namespace spm

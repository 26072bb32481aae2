#include "common/Text.h"

#include <algorithm>
#include <cwchar>
#include <fmt/format.h>
#include <locale>

namespace common {

namespace {

/// Returns the position of the first byte that is NUL or not valid UTF-8; the text's size if there is none.
std::size_t findInvalidByte(std::string_view text) {
    using Facet = std::codecvt<char32_t, char8_t, std::mbstate_t>;
    const std::u8string bytes(text.begin(), text.end());
    std::u32string characters(bytes.size(), U'\0');
    std::mbstate_t state{};
    const char8_t* stop = bytes.data();
    char32_t* end = characters.data();
    std::use_facet<Facet>(std::locale::classic())
        .in(state, bytes.data(), bytes.data() + bytes.size(), stop, end, end + characters.size(), end);
    return std::min(static_cast<std::size_t>(stop - bytes.data()), std::min(text.find('\0'), text.size()));
}

} // namespace

void requireUtf8(std::string_view text, std::string_view description) {
    if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF")) {
        throw TextError(fmt::format("{} is UTF-16; save it as UTF-8", description));
    }
    const std::size_t invalid = findInvalidByte(text);
    if (invalid == text.size()) return;
    const std::string_view before = text.substr(0, invalid);
    throw TextError(fmt::format("{}, line {}, byte {}: {} (0x{:02X}); save it as UTF-8", description,
                                1 + std::count(before.begin(), before.end(), '\n'), invalid - before.rfind('\n'),
                                text[invalid] == '\0' ? "a NUL byte is not allowed" : "this is not UTF-8",
                                static_cast<std::uint8_t>(text[invalid])));
}

std::string printable(std::string_view text) {
    std::string shown;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto code = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : '\0');
        const bool isC1 = code == 0xC2 && next >= 0x80 && next < 0xA0; // U+0080 to U+009F in UTF-8
        const bool isControl = code < 0x20 || code == 0x7F || isC1;
        shown += isControl ? "\uFFFD" : std::string(1, text[i]);
        if (isC1) ++i;
    }
    return shown;
}

} // namespace common

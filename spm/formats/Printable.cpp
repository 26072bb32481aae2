#include "spm/formats/Printable.h"

namespace spm {

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

} // namespace spm

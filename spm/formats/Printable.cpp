#include "spm/formats/Printable.h"

#include <algorithm>

namespace spm {

namespace {

/// How many bytes the control character has that a text begins with; 0 when it begins with another one. In UTF-8, those
/// from U+0080 to U+009F have two.
std::size_t controlLength(std::string_view text) {
    const auto code = static_cast<unsigned char>(text[0]);
    if (code < 0x20 || code == 0x7F) return 1;
    const bool isC1 = code == 0xC2 && text.size() > 1 && static_cast<unsigned char>(text[1]) < 0xA0;
    return isC1 ? 2 : 0;
}

} // namespace

std::string printable(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const std::size_t control = controlLength(text);
        if (control > 0) {
            shown += "\uFFFD";
        } else {
            shown += text[0];
        }
        text.remove_prefix(std::max<std::size_t>(control, 1));
    }
    return shown;
}

} // namespace spm

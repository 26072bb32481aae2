#include "module/CopyText.h"

#include <algorithm>
#include <cstring>

void copyText(const char* source, const SPM_TEXT& target) {
    if (target.text == nullptr || target.size < 1) return;
    target.text[0] = '\0';
    if (source == nullptr) return;
    const auto size = static_cast<std::size_t>(target.size);
    const std::size_t length = std::min(std::strlen(source), size - 1);
    std::fill(std::copy_n(source, length, target.text), target.text + size, '\0');
}

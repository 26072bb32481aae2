#include "cap/FormatText.h"

#include <array>
#include <cstdio>

namespace {

constexpr std::size_t maxLength = 1024;

} // namespace

std::string FormatTextList(const char* format, std::va_list arguments) {
    std::array<char, maxLength + 1> buffer; // not initialized: most texts are far shorter
    buffer[0] = '\0';
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): started by the caller
    std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
    return buffer.data();
}

std::string FormatText(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::string text = FormatTextList(format, arguments);
    va_end(arguments);
    return text;
}

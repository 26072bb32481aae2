#pragma once

#include <cstdarg>
#include <string>

/// Formats like std::printf. Truncates the result to 1024 characters.
[[nodiscard, gnu::format(printf, 1, 2)]] std::string FormatText(const char* format, ...);

/// FormatText with a va_list that the caller has started.
[[nodiscard, gnu::format(printf, 1, 0)]] std::string FormatTextList(const char* format, std::va_list arguments);

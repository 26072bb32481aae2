#pragma once

#include <cstdarg>
#include <string>

/// Formats like std::printf. An expansion of more than 1024 characters is cut to its first 1024.
[[nodiscard, gnu::format(printf, 1, 2)]] std::string FormatText(const char* format, ...);

/// FormatText for arguments that a variadic function has already collected.
[[nodiscard, gnu::format(printf, 1, 0)]] std::string FormatTextList(const char* format, std::va_list arguments);

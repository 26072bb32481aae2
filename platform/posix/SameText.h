#pragma once

#include <algorithm>
#include <cctype>
#include <string_view>

/// Whether two names are the same without regard to the case of ASCII letters.
inline bool sameText(std::string_view left, std::string_view right) {
    const auto lower = [](char character) { return std::tolower(static_cast<unsigned char>(character)); };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&](char a, char b) { return lower(a) == lower(b); });
}

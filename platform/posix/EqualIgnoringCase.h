#pragma once

#include <string_view>
#include <strings.h>

/// Whether two texts are equal, ignoring the case of letters.
inline bool equalIgnoringCase(std::string_view left, std::string_view right) {
    return left.size() == right.size() && strncasecmp(left.data(), right.data(), left.size()) == 0;
}

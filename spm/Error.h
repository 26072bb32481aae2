#pragma once

#include "common/Error.h"

#include <string>

namespace spm {

using common::Error;

/// An invalid command line.
class UsageError : public Error {
public:
    using Error::Error;
};

inline std::string firstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

} // namespace spm

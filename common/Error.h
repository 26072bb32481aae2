#pragma once

#include <stdexcept>
#include <string>

namespace common {

/// An error message for the user: what happened, with what, and what to do.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;

    /// @param failure  what happened, with what
    /// @param advice   what to do
    Error(const std::string& failure, const std::string& advice)
        : std::runtime_error(failure + "; " + advice), failureLength(failure.size()) {}

    /// The message without the advice, if that was given separately.
    std::string failure() const { return std::string(what()).substr(0, failureLength); }

    /// The advice; empty if it wasn't given separately.
    std::string advice() const {
        return failureLength == std::string::npos ? "" : std::string(what()).substr(failureLength + 2);
    }

private:
    std::size_t failureLength = std::string::npos;
};

} // namespace common

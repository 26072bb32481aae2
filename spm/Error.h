#pragma once

#include <stdexcept>
#include <string>

namespace spm {

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

private:
    std::size_t failureLength = std::string::npos;
};

/// An invalid command line.
class UsageError : public Error {
public:
    using Error::Error;
};

inline std::string firstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

} // namespace spm

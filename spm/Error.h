#pragma once

#include <stdexcept>
#include <string>

namespace spm {

/// A failure to tell the user: what happened, with what, and what to do.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;

    /// @param failure  what happened, with what
    /// @param advice   what to do
    Error(const std::string& failure, const std::string& advice)
        : std::runtime_error(failure + "; " + advice), length(failure.size()) {}

    /// What happened, without the advice where that was given apart.
    std::string failure() const { return std::string(what()).substr(0, length); }

private:
    std::size_t length = std::string::npos;
};

/// The first line of a text of several.
inline std::string firstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

/// A command line that can't be meant.
class UsageError : public Error {
public:
    using Error::Error;
};

} // namespace spm

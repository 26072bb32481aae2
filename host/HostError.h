#pragma once

#include <stdexcept>
#include <string>

namespace host {

/// A failure to tell the user: what happened, with what, and what to do.
class HostError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;

    /// @param failure  what happened, with what
    /// @param advice   what to do
    HostError(const std::string& failure, const std::string& advice)
        : std::runtime_error(failure + "; " + advice), length(failure.size()) {}

    /// What happened, without the advice where that was given apart.
    std::string failure() const { return std::string(what()).substr(0, length); }

private:
    std::size_t length = std::string::npos;
};

/// A command line that can't be meant.
class UsageError : public HostError {
public:
    using HostError::HostError;
};

} // namespace host

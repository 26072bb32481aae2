#pragma once

#include <stdexcept>
#include <string>

namespace common {

/// An error message for the user: what happened, with what, and what to do.
class Error : public std::runtime_error {
public:
    /// @param failure  what happened, with what
    /// @param advice   what to do, if that is given separately
    explicit Error(const std::string& failure, const std::string& advice = "")
        : std::runtime_error(advice.empty() ? failure : failure + "; " + advice), failureLength(failure.size()) {}

    /// The message without the advice.
    std::string failure() const { return std::string(what()).substr(0, failureLength); }
    std::string advice() const { return std::string(what() + failureLength).erase(0, 2); }

private:
    std::size_t failureLength;
};

} // namespace common

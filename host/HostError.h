#pragma once

#include <stdexcept>

namespace host {

/// A failure to tell the user: what happened, with what, and what to do.
class HostError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace host

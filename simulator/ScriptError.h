#pragma once

#include <stdexcept>

namespace simulator {

/// What is wrong with a file, and what would be right: "file, line 3: ...".
class ScriptError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace simulator

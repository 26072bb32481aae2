#pragma once

#include <string>

namespace spm {

/// What a finding means: all is well, or worth to know, or measuring (or a log that was asked for) fails.
enum class Verdict { good, note, wrong };

/// What was found out about a part of the installation.
struct Finding {
    Verdict verdict;
    std::string subject;
    std::string text;
    /// What to do; empty when there is nothing to do.
    std::string advice;
};

} // namespace spm

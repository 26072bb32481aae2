#pragma once

#include <string>

namespace spm {

/// A note is about something that works, but perhaps not as the user expects. What is wrong keeps the module from
/// measuring, or from writing a log that the settings enable.
enum class Verdict { good, note, wrong };

/// The state of a part of the installation.
struct Finding {
    Verdict verdict;
    /// The part: "SDK library".
    std::string subject;
    std::string text;
    /// What to do; may be empty.
    std::string advice;
};

} // namespace spm

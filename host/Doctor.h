#pragma once

#include "host/Swatch.h"

#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace host {

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

/// Looks at everything that measuring needs, from the module's file to the calibration of the instrument. Changes
/// nothing that the module does not change when a host uses it.
std::vector<Finding> examine(const std::filesystem::path& module);

bool isSound(std::span<const Finding> findings);

/// The findings for people, a paragraph each, and a last line that sums up.
std::string formatFindings(std::span<const Finding> findings, ColourDepth depth);

} // namespace host

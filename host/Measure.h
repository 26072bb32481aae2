#pragma once

#include <cstdint>
#include <filesystem>

namespace host {

/// What to measure.
struct MeasureOptions {
    std::filesystem::path module;
    /// A CSV file with a header line and then a line per patch that begins with its name; empty for none.
    std::filesystem::path chart;
    std::int32_t rows = 4;
    std::int32_t patches = 6;
};

/// Calibrates, measures a chart row by row and then one spot spectrum, and prints them.
/// @throws HostError  when something fails
void measure(const MeasureOptions& options);

} // namespace host

#pragma once

#include "spm/measure/Measure.h"
#include "spm/measure/Prompter.h"

#include <span>

namespace spm {

/// What is measured in one pass.
enum class Quantity { lab, spectrum };

/// Patches that are measured at once: a row or a spot.
struct Strip {
    std::size_t first;
    std::int32_t count;
    std::string name;
};

/// The passes over the chart that the options ask for, in their order.
std::vector<Quantity> passesOf(const MeasureOptions& options);

/// The form in which the values are written.
/// @throws UsageError  when the options don't tell it
Format formatOf(const MeasureOptions& options);

/// What is measured is kept here, and written whenever there is more of it.
class RunWriter {
public:
    /// @param names  of all patches, in their order
    RunWriter(const MeasureOptions& chosen, const Prompter& shown, Run begun, const std::vector<std::string>& names);

    std::span<Reading> patches(const Strip& strip);

    /// The run with what was measured so far.
    Run measured() const;

    /// Writes a strip that was just measured. A file that can't be written at this time is told of, and tried again
    /// with the next strip.
    void save(Quantity quantity, const Strip& strip);

    /// Writes what is made of the whole run. Values that the output file does not take go to standard output.
    /// @throws Error  when something can't be written
    void finish();

    /// Shows a text for people: on standard output where that has no data.
    void show(const std::string& text) const;

private:
    std::string table(Quantity quantity, std::span<const Reading> part) const;
    std::string text(const Run& part) const;
    void saveOrShow(const Run& whole);

    const MeasureOptions& options;
    const Prompter& prompter;
    Format format;
    Run run;
    std::vector<Reading> readings;
    bool isSaved = true;
};

} // namespace spm

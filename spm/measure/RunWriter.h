#pragma once

#include "spm/measure/Measure.h"
#include "spm/measure/Prompter.h"

#include <chrono>
#include <functional>
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

/// Whether the run has CIELab values, measured or calculated.
bool givesLab(const MeasureOptions& options);

/// The form in which the values are written.
/// @throws UsageError  when the options don't tell it
Format formatOf(const MeasureOptions& options);

/// Keeps the run, and writes it whenever there is more of it.
class RunWriter {
public:
    /// @param begun  the run with all its patches
    RunWriter(const MeasureOptions& chosen, const Prompter& shown, Run begun);

    std::span<Reading> patches(const Strip& strip);

    /// The run with what was measured so far.
    const Run& measured() const { return run; }

    /// Notes what the patches are measured with.
    void setInstrument(const std::string& name, const std::string& illumination);

    /// Writes a strip that was just measured: to standard output, or with all others to the output file. What can't be
    /// written is reported, and tried again with the next strip.
    void save(Quantity quantity, const Strip& strip);

    /// Writes to the output file what save left for later. A file that holds many strips is not written for each, but
    /// for at most a twentieth of the time, and once a second.
    void saveDue();

    /// Writes what is made of the whole run. Each file is tried whatever becomes of the others; values that can't be
    /// written anywhere else go to standard output, last.
    /// @param reason  why patches were not reached, if so
    /// @throws Error  with all that can't be written
    void finish(const std::string& reason);

    /// Shows people the comparison with the reference, if there is one: on standard output below the tables, otherwise
    /// on standard error.
    void showComparison() const;

private:
    using Clock = std::chrono::steady_clock;

    std::string table(Quantity quantity, std::span<const Reading> part) const;
    std::string text() const;
    bool attempt(const std::function<void()>& write, std::string& failures) const;

    const MeasureOptions& options;
    const Prompter& prompter;
    Format format;
    Run run;
    bool isSaved = true;
    bool hasFailed = false;
    Clock::time_point nextSave{};
};

} // namespace spm

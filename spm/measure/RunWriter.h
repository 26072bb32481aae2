#pragma once

#include "spm/measure/Measure.h"
#include "spm/measure/Prompter.h"

#include <chrono>
#include <functional>
#include <span>

namespace spm {

/// The quantity measured in a pass over the chart.
enum class Quantity { lab, spectrum };

/// Patches measured in one stroke: a row or a spot.
struct Strip {
    /// The index of the first patch in the run.
    std::size_t first;
    std::int32_t count;
    /// "Row 2 of 4".
    std::string name;
};

/// The passes over the chart, in order.
std::vector<Quantity> passesOf(const MeasureOptions& options);

/// Whether the run has CIELab values, measured or calculated.
bool producesLab(const MeasureOptions& options);

/// The output format.
/// @throws UsageError  if the options don't determine it
Format formatOf(const MeasureOptions& options);

/// Holds the run's data and saves it as it grows.
class RunWriter {
public:
    /// The options and the prompter must outlive the writer.
    /// @param initialRun  has all patches of the chart
    RunWriter(const MeasureOptions& measureOptions, const Prompter& userPrompter, Run initialRun);

    std::span<Reading> patches(const Strip& strip);

    const Run& currentRun() const { return run; }

    void setInstrument(const std::string& name, const std::string& illumination);

    /// Saves a strip that was just measured: writes all strips to the output file or, without one, the strip's table to
    /// standard output, where other formats have to wait for finish(). An error is reported to the user, and saving is
    /// retried with the next strip.
    void save(Quantity quantity, const Strip& strip);

    /// Writes the output file if it is out of date. As this writes the whole file, it does so at most once a second,
    /// and for at most a twentieth of the time.
    void saveIfDue();

    /// Writes the final output file and the report, each even if the other fails. Values that are in no file go to
    /// standard output.
    /// @param reason  why the remaining patches were not measured, if there are any
    /// @throws Error  with all errors
    void finish(const std::string& reason);

    /// Prints the comparison with the reference, if there is one: to standard output after the tables, otherwise to
    /// standard error.
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
    /// Whether all measured strips are saved.
    bool isSaved = true;
    /// Whether the last attempt failed; saving then waits for the next strip.
    bool hasSaveFailed = false;
    Clock::time_point nextSave{};
};

} // namespace spm

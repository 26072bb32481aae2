#pragma once

#include "spm/measure/Plan.h"
#include "spm/measure/Prompter.h"

namespace spm {

/// Saves a run as it grows.
class RunWriter {
public:
    /// Both must outlive the writer.
    RunWriter(const Plan& savedPlan, const Prompter& userPrompter) : plan(savedPlan), prompter(userPrompter) {}

    /// Saves a strip that was just measured: writes the whole run to the output file or, without one, the strip's table
    /// to standard output, where other formats have to wait for finish(). An error is reported to the user, and saving
    /// is retried with the next strip.
    void save(const Strip& strip);

    /// Writes the final output file and the report, each even if the other fails. Values that are in no file go to
    /// standard output. All errors are reported to the user.
    /// @return whether everything was written
    bool finish();

    /// Prints the comparison with the reference, if there is one: to standard output after the tables, otherwise to
    /// standard error.
    void showComparison() const;

private:
    bool showsTables() const { return plan.format == nullptr; }
    std::string text() const;

    const Plan& plan;
    const Prompter& prompter;
    /// Whether all measured strips are saved.
    bool isSaved = true;
};

} // namespace spm

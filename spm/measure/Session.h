#pragma once

#include "spm/Instrument.h"
#include "spm/measure/Fit.h"
#include "spm/measure/RunWriter.h"

#include <optional>
#include <vector>

namespace spm {

/// Guides the user through the measurement of all strips with missing patches. On a terminal, the user can repeat what
/// failed.
class Session {
public:
    /// All must outlive the session.
    /// @param measuredRun  receives the readings
    Session(const Module& loadedModule, const Prompter& userPrompter, RunWriter& output, Run& measuredRun);

    /// Opens and calibrates the instrument, then measures. Does nothing if all patches are measured.
    /// @throws Error        if something fails and isn't repeated
    /// @throws Interrupted  if the user stops the run
    void measure();

private:
    struct Attempt {
        /// A reading for each patch of the strip; empty if some were missed.
        std::vector<Reading> readings;
        /// Why the user may not want to keep them; empty if there is no reason.
        std::string problem{};
        /// Whether the instrument failed.
        bool hasFailed = false;
        std::optional<Fit> better{};
    };
    enum class Decision : char { repeat = 'r', keep = 'k', take = 't', skip = 's' };

    void calibrate();
    bool tryToCalibrate();
    void measureStrip(std::size_t index);
    Attempt attempt(std::size_t index);
    std::vector<Reading> read(const Strip& strip);
    Decision decide(const Attempt& attempt) const;
    void recover();
    void keep(const std::vector<Reading>& readings, const Strip& strip);
    void take(std::vector<Reading> readings, const Fit& fit);
    Progress progress() const { return {measuredCount(run.patches), run.patches.size()}; }

    const Module& module;
    const Prompter& prompter;
    RunWriter& writer;
    Run& run;
    const std::vector<Strip> strips;
    std::optional<Instrument> instrument;
};

} // namespace spm

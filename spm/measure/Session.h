#pragma once

#include "spm/Instrument.h"
#include "spm/measure/RunWriter.h"

#include <optional>

namespace spm {

/// The strips to measure, in order.
std::vector<Strip> stripsOf(const MeasureOptions& options);

/// Guides the user through the measurement of all strips. On a terminal, the user can repeat what failed.
class Session {
public:
    /// All but the options must outlive the session.
    Session(const Module& loadedModule, const Prompter& userPrompter, RunWriter& output, const MeasureOptions& options);

    /// Opens and calibrates the instrument, then measures all strips.
    /// @return complete or incomplete
    /// @throws Error        if something fails and isn't repeated
    /// @throws Interrupted  if the user stops the run
    Outcome measure();

private:
    struct Attempt {
        /// The patches that were found, in the strip's order; fewer than the strip has if some were missed.
        std::vector<Reading> readings;
        /// Why the user may not want to keep them; empty if there is no reason.
        std::string problem;
    };
    enum class Decision : char { repeat = 'r', keep = 'k', skip = 's' };

    void calibrate();
    bool tryToCalibrate();
    bool measureStrip(Quantity quantity, const Strip& strip);
    Attempt attempt(Quantity quantity, const Strip& strip);
    std::vector<Reading> read(Quantity quantity, const Strip& strip);
    std::string findProblem(std::span<const Reading> readings, Quantity quantity, const Strip& strip) const;
    Decision decide(const Attempt& attempt, const Strip& strip) const;
    void recover();
    void keep(const Attempt& attempt, Quantity quantity, const Strip& strip);
    void markMissing(std::span<Reading> patches, Quantity quantity, const std::string& reason) const;
    std::string titleOf(Quantity quantity, const Strip& strip) const;

    const Module& module;
    const Prompter& prompter;
    RunWriter& writer;
    const std::vector<Quantity> passes;
    const std::vector<Strip> strips;
    const std::size_t firstStrip;
    Progress progress{};
    std::optional<Instrument> instrument;
};

} // namespace spm

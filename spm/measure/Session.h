#pragma once

#include "spm/Instrument.h"
#include "spm/measure/RunWriter.h"

#include <optional>

namespace spm {

/// The strips that the options ask for, in their order.
std::vector<Strip> stripsOf(const MeasureOptions& options);

/// Measuring with a person: from connecting and calibrating the instrument to the last strip. What fails can be
/// repeated, when there is a terminal to ask on.
class Session {
public:
    Session(const Module& loaded, const Prompter& shown, RunWriter& kept, const MeasureOptions& chosen);

    /// @throws Error        when something fails that is not to be repeated
    /// @throws Interrupted  when the person ends the measuring
    Outcome measure();

private:
    /// What a strip gave: its first patches, all or some or none, and what speaks against them.
    struct Attempt {
        std::vector<Reading> read;
        std::string doubt;
    };

    void calibrate();
    bool tryToCalibrate();
    void restore();
    bool measure(Quantity quantity, const Strip& strip);
    Attempt attempt(Quantity quantity, const Strip& strip);
    std::vector<Reading> read(Quantity quantity, const Strip& strip);
    std::string findDoubt(std::span<const Reading> read, Quantity quantity, const Strip& strip) const;
    char decide(const Attempt& attempt, const Strip& strip) const;
    void keep(Attempt& attempt, Quantity quantity, const Strip& strip);
    void noteGap(std::span<Reading> patches, Quantity quantity, const std::string& reason) const;
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

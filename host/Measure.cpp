// A measuring run: the dialogue with the person.

#include "host/Measure.h"

#include "host/Dialogue.h"
#include "host/HostError.h"
#include "host/Interrupt.h"
#include "host/OutputFile.h"
#include "host/PatchNames.h"
#include "host/Record.h"
#include "host/Reference.h"
#include "host/Values.h"

#include <algorithm>
#include <chrono>
#include <fmt/chrono.h>
#include <set>

namespace host {

namespace {

std::vector<Stretch> stretchesOf(const MeasureOptions& options) {
    const bool isSpots = options.spots > 0;
    const std::int32_t stretches = isSpots ? options.spots : options.rows;
    const std::int32_t count = isSpots ? 1 : options.patches;
    std::vector<Stretch> all;
    all.reserve(static_cast<std::size_t>(stretches));
    for (std::int32_t i = 0; i < stretches; ++i) {
        all.push_back({static_cast<std::size_t>(i) * static_cast<std::size_t>(count), count,
                       fmt::format("{} {} of {}", isSpots ? "Spot" : "Row", i + 1, stretches)});
    }
    return all;
}

/// Nothing that is read may be written over, and nothing written twice.
void requireDifferentFiles(const MeasureOptions& options) {
    std::set<std::filesystem::path> files{options.module, options.chart, options.reference};
    std::set<std::filesystem::path> taken;
    std::transform(files.begin(), files.end(), std::inserter(taken, taken.end()),
                   [](const std::filesystem::path& file) { return std::filesystem::weakly_canonical(file); });
    for (const std::filesystem::path& file : {options.output, options.report}) {
        if (file.empty()) continue;
        if (!taken.insert(std::filesystem::weakly_canonical(file)).second) {
            throw UsageError(fmt::format("{} would be written over; give each file a name of its own", file.string()));
        }
        requireWritable(file);
    }
}

/// The expected values, of which some must be of these patches.
std::optional<Reference> referenceOf(const MeasureOptions& options, const std::vector<std::string>& names) {
    if (options.reference.empty()) return std::nullopt;
    if (passesOf(options).front() != Kind::lab) {
        throw UsageError("--reference compares CIELab values, which are not measured; add --lab");
    }
    Reference reference = readReference(options.reference);
    const auto isExpected = [&](const std::string& name) { return reference.patches.contains(name); };
    if (std::none_of(names.begin(), names.end(), isExpected)) {
        throw UsageError(fmt::format("no patch has the name of one in the reference file {}: \"{}\" is to be measured, "
                                     "the reference has \"{}\"; name the patches as the reference does",
                                     options.reference.string(), names.front(), reference.patches.begin()->first));
    }
    return reference;
}

std::string timeNow() {
    return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}",
                       fmt::gmtime(std::chrono::system_clock::to_time_t(std::chrono::system_clock::now())));
}

std::string promptFor(Kind kind, const Stretch& stretch, std::span<const Reading> patches) {
    const std::string what = fmt::format("{}, {}", stretch.name, kind == Kind::lab ? "CIELab" : "spectra");
    if (stretch.count == 1) {
        return fmt::format("\n{}: place the instrument on \"{}\" and press the button.", what, patches.front().name);
    }
    return fmt::format("\n{}: press the button and slide the instrument from \"{}\" to \"{}\".", what,
                       patches.front().name, patches.back().name);
}

/// Measuring on an open instrument, from the calibration to the last stretch.
class Session {
public:
    Session(Instrument& opened, const Dialogue& shown, Record& kept, const MeasureOptions& options)
        : instrument(opened), dialogue(shown), record(kept), passes(passesOf(options)),
          stretches(stretchesOf(options)) {
        progress.all = passes.size() * stretches.size() * static_cast<std::size_t>(stretches.front().count);
    }

    Outcome measure() {
        calibrate();
        Outcome outcome = Outcome::complete;
        for (const Kind kind : passes) {
            for (const Stretch& stretch : stretches) {
                if (!measure(kind, stretch)) outcome = Outcome::incomplete;
                InterruptGuard::check();
            }
        }
        return outcome;
    }

private:
    void calibrate() const {
        dialogue.say("\nCalibration: place the instrument on its white reference and press the button.");
        instrument.calibrate(dialogue.wait(progress));
        dialogue.say("Calibrated.");
        InterruptGuard::check();
    }

    /// Measures a stretch until it was read or is not wanted any more.
    /// @return false when it was skipped
    bool measure(Kind kind, const Stretch& stretch) {
        while (!read(kind, stretch)) {
            if (dialogue.askWhatNext() == Dialogue::Choice::skip) return false;
        }
        dialogue.clear();
        progress.done += static_cast<std::size_t>(stretch.count);
        record.save(kind, stretch);
        return true;
    }

    /// @return false when it failed, and the person can say what to do
    bool read(Kind kind, const Stretch& stretch) try {
        const std::span<Reading> patches = record.patches(stretch);
        dialogue.say(promptFor(kind, stretch, patches));
        std::vector<Reading> read(patches.begin(), patches.end());
        const Instrument::Wait wait = dialogue.wait(progress);
        if (kind == Kind::lab) {
            take(instrument.read(stretch.count, wait), &Reading::lab, read, stretch);
        } else {
            take(instrument.readSpectra(stretch.count, wait), &Reading::spectrum, read, stretch);
        }
        std::for_each(read.begin(), read.end(), requireFinite);
        std::move(read.begin(), read.end(), patches.begin());
        return true;
    } catch (const HostError& error) {
        if (!dialogue.canAsk()) throw;
        dialogue.say(error.what());
        return false;
    }

    template <class Value, class Member>
    static void take(std::vector<Value> values, Member member, std::span<Reading> patches, const Stretch& stretch) {
        if (values.size() != patches.size()) {
            throw HostError(fmt::format("{}: {} of {} patches were found; slide more slowly, from white to white",
                                        stretch.name, values.size(), patches.size()));
        }
        for (std::size_t i = 0; i < patches.size(); ++i) {
            patches[i].*member = std::move(values[i]);
        }
    }

    Instrument& instrument;
    const Dialogue& dialogue;
    Record& record;
    const std::vector<Kind> passes;
    const std::vector<Stretch> stretches;
    Progress progress{};
};

Outcome measureAll(const Module& module, const MeasureOptions& options, const Dialogue& dialogue, Record& record) {
    const InterruptGuard interrupts;
    try {
        Instrument instrument(module);
        return Session(instrument, dialogue, record, options).measure();
    } catch (const Interrupted&) {
        dialogue.say("\nEnded; the instrument is closed, and what was read is kept.");
        return Outcome::incomplete;
    }
}

Run begin(const Module& module, const MeasureOptions& options) {
    Run run;
    run.started = timeNow();
    run.module = options.module.string();
    run.version = module.getVersion(nullptr);
    run.simulation = module.simulation();
    run.patchesInRow = options.spots > 0 ? 0 : options.patches;
    return run;
}

void introduce(const Dialogue& dialogue, const Run& run, const MeasureOptions& options) {
    dialogue.say(fmt::format("Module {}, version {}", run.module, run.version));
    if (!run.simulation.empty()) {
        dialogue.say(fmt::format("SIMULATED: no instrument is used. The values come from a {}.", run.simulation));
    }
    if (passesOf(options).size() > 1) {
        dialogue.say("All is measured twice: first for the CIELab values, then for the spectra.");
    }
}

} // namespace

Outcome measure(const MeasureOptions& options) {
    static_cast<void>(formatOf(options));
    requireDifferentFiles(options);
    const std::vector<std::string> names = patchNames(options);
    const std::optional<Reference> reference = referenceOf(options, names);
    const Dialogue dialogue;
    const Module module(options.module);
    const Run run = begin(module, options);
    introduce(dialogue, run, options);
    Record record(options, dialogue, run, names);
    Outcome outcome = Outcome::incomplete;
    std::optional<HostError> failure;
    try {
        outcome = measureAll(module, options, dialogue, record);
    } catch (const HostError& error) {
        failure = error;
        dialogue.clear();
    }
    try {
        record.finish();
        if (reference && !failure) record.show(formatComparison(compare(record.measured(), *reference)));
    } catch (const HostError& error) {
        if (!failure) throw;
        dialogue.say(error.what());
    }
    if (failure) throw HostError(*failure);
    return outcome;
}

} // namespace host

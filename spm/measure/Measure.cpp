// A measuring run: the dialogue with the person.

#include "spm/measure/Measure.h"

#include "spm/Error.h"
#include "spm/formats/Reference.h"
#include "spm/measure/Interrupt.h"
#include "spm/measure/OutputFile.h"
#include "spm/measure/PatchNames.h"
#include "spm/measure/Prompter.h"
#include "spm/measure/RunWriter.h"

#include <algorithm>
#include <chrono>
#include <fmt/chrono.h>
#include <set>

namespace spm {

namespace {

std::vector<Strip> stripsOf(const MeasureOptions& options) {
    const bool isSpots = options.spots > 0;
    const std::int32_t strips = isSpots ? options.spots : options.rows;
    const std::int32_t count = isSpots ? 1 : options.patches;
    std::vector<Strip> all;
    all.reserve(static_cast<std::size_t>(strips));
    for (std::int32_t i = 0; i < strips; ++i) {
        all.push_back({static_cast<std::size_t>(i) * static_cast<std::size_t>(count), count,
                       fmt::format("{} {} of {}", isSpots ? "Spot" : "Row", i + 1, strips)});
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
    if (passesOf(options).front() != Quantity::lab) {
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

std::string promptFor(Quantity quantity, const Strip& strip, std::span<const Reading> patches) {
    const std::string what = fmt::format("{}, {}", strip.name, quantity == Quantity::lab ? "CIELab" : "spectra");
    if (strip.count == 1) {
        return fmt::format("\n{}: place the instrument on \"{}\" and press the button.", what, patches.front().name);
    }
    return fmt::format("\n{}: press the button and slide the instrument from \"{}\" to \"{}\".", what,
                       patches.front().name, patches.back().name);
}

/// Measuring on an open instrument, from the calibration to the last strip.
class Session {
public:
    Session(Instrument& opened, const Prompter& shown, RunWriter& kept, const MeasureOptions& options)
        : instrument(opened), prompter(shown), writer(kept), passes(passesOf(options)), strips(stripsOf(options)) {
        progress.all = passes.size() * strips.size() * static_cast<std::size_t>(strips.front().count);
    }

    Outcome measure() {
        calibrate();
        Outcome outcome = Outcome::complete;
        for (const Quantity quantity : passes) {
            for (const Strip& strip : strips) {
                if (!measure(quantity, strip)) outcome = Outcome::incomplete;
                InterruptGuard::check();
            }
        }
        return outcome;
    }

private:
    void calibrate() const {
        prompter.say("\nCalibration: place the instrument on its white reference and press the button.");
        instrument.calibrate(prompter.wait(progress));
        prompter.say("Calibrated.");
        InterruptGuard::check();
    }

    /// Measures a strip until it was read or is not wanted any more.
    /// @return false when it was skipped
    bool measure(Quantity quantity, const Strip& strip) {
        while (!read(quantity, strip)) {
            if (prompter.askWhatNext() == Prompter::Choice::skip) return false;
        }
        prompter.clear();
        progress.done += static_cast<std::size_t>(strip.count);
        writer.save(quantity, strip);
        return true;
    }

    /// @return false when it failed, and the person can say what to do
    bool read(Quantity quantity, const Strip& strip) try {
        const std::span<Reading> patches = writer.patches(strip);
        prompter.say(promptFor(quantity, strip, patches));
        std::vector<Reading> read(patches.begin(), patches.end());
        const Instrument::Wait wait = prompter.wait(progress);
        if (quantity == Quantity::lab) {
            take(instrument.read(strip.count, wait), &Reading::lab, read, strip);
        } else {
            take(instrument.readSpectra(strip.count, wait), &Reading::spectrum, read, strip);
        }
        std::for_each(read.begin(), read.end(), requireFinite);
        std::move(read.begin(), read.end(), patches.begin());
        return true;
    } catch (const Error& error) {
        if (!prompter.canAsk()) throw;
        prompter.say(error.what());
        return false;
    }

    template <class Value, class Member>
    static void take(std::vector<Value> values, Member member, std::span<Reading> patches, const Strip& strip) {
        if (values.size() != patches.size()) {
            throw Error(fmt::format("{}: {} of {} patches were found; slide more slowly, from white to white",
                                    strip.name, values.size(), patches.size()));
        }
        for (std::size_t i = 0; i < patches.size(); ++i) {
            patches[i].*member = std::move(values[i]);
        }
    }

    Instrument& instrument;
    const Prompter& prompter;
    RunWriter& writer;
    const std::vector<Quantity> passes;
    const std::vector<Strip> strips;
    Progress progress{};
};

Outcome measureAll(const Module& module, const MeasureOptions& options, const Prompter& prompter, RunWriter& writer) {
    const InterruptGuard interrupts;
    try {
        Instrument instrument(module);
        return Session(instrument, prompter, writer, options).measure();
    } catch (const Interrupted&) {
        prompter.say("\nEnded; the instrument is closed, and what was read is kept.");
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

void introduce(const Prompter& prompter, const Run& run, const MeasureOptions& options) {
    prompter.say(fmt::format("Module {}, version {}", run.module, run.version));
    if (!run.simulation.empty()) {
        prompter.say(fmt::format("SIMULATED: no instrument is used. The values come from a {}.", run.simulation));
    }
    if (passesOf(options).size() > 1) {
        prompter.say("All is measured twice: first for the CIELab values, then for the spectra.");
    }
}

} // namespace

Outcome measure(const MeasureOptions& wanted) {
    static_cast<void>(formatOf(wanted));
    requireDifferentFiles(wanted);
    const std::vector<std::string> names = patchNames(wanted);
    MeasureOptions options = wanted;
    options.rows = static_cast<std::int32_t>(names.size()) / options.patches;
    const std::optional<Reference> reference = referenceOf(options, names);
    const Prompter prompter;
    const Module module(options.module);
    const Run run = begin(module, options);
    introduce(prompter, run, options);
    RunWriter writer(options, prompter, run, names);
    Outcome outcome = Outcome::incomplete;
    std::optional<Error> failure;
    try {
        outcome = measureAll(module, options, prompter, writer);
    } catch (const Error& error) {
        failure = error;
        prompter.clear();
    }
    try {
        writer.finish();
        if (reference && !failure) writer.show(formatComparison(compare(writer.measured(), *reference)));
    } catch (const Error& error) {
        if (!failure) throw;
        prompter.say(error.what());
    }
    if (failure) throw Error(*failure);
    return outcome;
}

} // namespace spm

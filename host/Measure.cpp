// A measuring run: the dialogue with the person, and what is written of it.

#include "host/Measure.h"

#include "host/Dialogue.h"
#include "host/Formats.h"
#include "host/HostError.h"
#include "host/Interrupt.h"
#include "host/OutputFile.h"
#include "host/PatchNames.h"
#include "host/Reference.h"
#include "host/Report.h"
#include "host/System.h"
#include "host/Table.h"

#include <algorithm>
#include <chrono>
#include <fmt/chrono.h>

namespace host {

namespace {

enum class Kind { lab, spectrum };

/// Patches that are measured at once: a row or a spot.
struct Stretch {
    std::size_t first;
    std::int32_t count;
    std::string name;
};

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

std::vector<Kind> passesOf(const MeasureOptions& options) {
    if (options.lab && options.spectra) return {Kind::lab, Kind::spectrum};
    return {options.spectra ? Kind::spectrum : Kind::lab};
}

Format formatOf(const MeasureOptions& options) {
    if (options.format != Format::byName) return options.format;
    if (options.output.empty()) return Format::table;
    const std::string extension = options.output.extension().string();
    if (extension == ".csv") return Format::csv;
    if (extension == ".json") return Format::json;
    if (extension == ".txt" || extension == ".cgats") return Format::cgats;
    throw HostError(
        fmt::format("the name {} does not tell the format; end it in .csv, .json or .cgats, or use --format",
                    options.output.string()));
}

std::optional<Reference> referenceOf(const MeasureOptions& options) {
    if (options.reference.empty()) return std::nullopt;
    if (passesOf(options).front() != Kind::lab) {
        throw HostError("--reference compares CIELab values, which are not measured; add --lab");
    }
    return readReference(options.reference);
}

std::string timeNow() {
    return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}",
                       fmt::gmtime(std::chrono::system_clock::to_time_t(std::chrono::system_clock::now())));
}

/// What is measured is kept here, and written to the output file whenever there is more of it.
class Record {
public:
    Record(const MeasureOptions& chosen, Run begun, const std::vector<std::string>& names)
        : options(chosen), format(formatOf(chosen)), run(std::move(begun)) {
        for (const std::string& name : names) {
            readings.push_back({name, {}, {}});
        }
    }

    const Run& conditions() const { return run; }
    std::span<Reading> patches(const Stretch& stretch) {
        return std::span(readings).subspan(stretch.first, static_cast<std::size_t>(stretch.count));
    }

    /// The run with what was measured so far.
    Run measured() const {
        Run part = run;
        std::copy_if(readings.begin(), readings.end(), std::back_inserter(part.readings),
                     [](const Reading& reading) { return reading.lab || !reading.spectrum.empty(); });
        return part;
    }

    void save(Kind kind, const Stretch& stretch) {
        if (!options.output.empty()) {
            replaceFile(options.output, text(measured()));
        } else if (format == Format::table) {
            fmt::print("{}", table(kind, patches(stretch)));
            std::fflush(stdout);
        }
    }

    /// Writes what is made of the whole run.
    void finish(const Dialogue& dialogue, const std::optional<Reference>& reference) const {
        const Run whole = measured();
        if (whole.readings.empty()) return;
        if (options.output.empty() && format != Format::table) fmt::print("{}", text(whole));
        if (!options.report.empty()) replaceFile(options.report, htmlReport(whole));
        if (!reference) return;
        const std::string comparison = formatComparison(compare(whole, *reference));
        if (format == Format::table) {
            fmt::print("\n{}", comparison);
        } else {
            dialogue.say(comparison);
        }
    }

private:
    std::string table(Kind kind, std::span<const Reading> part) const {
        const ColourDepth depth = options.output.empty() ? colourDepth(isTerminal(stdout)) : ColourDepth::none;
        const bool isSimulated = !run.simulation.empty();
        return kind == Kind::lab ? labTable(part, isSimulated, depth) : spectraTable(part, isSimulated, depth);
    }

    std::string text(const Run& part) const {
        switch (format) {
        case Format::csv:
            return formatCsv(part);
        case Format::json:
            return formatJson(part);
        case Format::cgats:
            return formatCgats(part);
        default: {
            std::string tables;
            for (const Kind kind : passesOf(options)) {
                tables += table(kind, part.readings);
            }
            return tables;
        }
        }
    }

    const MeasureOptions& options;
    Format format;
    Run run;
    std::vector<Reading> readings;
};

std::string promptFor(Kind kind, const Stretch& stretch, std::span<const Reading> patches) {
    const std::string what = fmt::format("{}, {}", stretch.name, kind == Kind::lab ? "CIELab" : "spectra");
    if (stretch.count == 1) {
        return fmt::format("\n{}: place the instrument on \"{}\" and press the button.", what, patches.front().name);
    }
    return fmt::format("\n{}: press the button and slide the instrument from \"{}\" to \"{}\".", what,
                       patches.front().name, patches.back().name);
}

void expectAll(const Stretch& stretch, std::size_t found) {
    if (found == static_cast<std::size_t>(stretch.count)) return;
    throw HostError(fmt::format("{}: {} of {} patches were found; slide more slowly, from white to white", stretch.name,
                                found, stretch.count));
}

void readStretch(Instrument& instrument, const Dialogue& dialogue, Kind kind, const Stretch& stretch,
                 const Progress& progress, std::span<Reading> patches) {
    dialogue.say(promptFor(kind, stretch, patches));
    const Instrument::Wait wait = dialogue.wait(progress);
    if (kind == Kind::lab) {
        const std::vector<SPM_LAB> values = instrument.read(stretch.count, wait);
        expectAll(stretch, values.size());
        for (std::size_t i = 0; i < patches.size(); ++i) {
            patches[i].lab = values[i];
        }
    } else {
        std::vector<Instrument::Spectrum> spectra = instrument.readSpectra(stretch.count, wait);
        expectAll(stretch, spectra.size());
        for (std::size_t i = 0; i < patches.size(); ++i) {
            patches[i].spectrum = std::move(spectra[i]);
        }
    }
}

/// Measures a stretch until it was read or is not wanted any more.
/// @return false when it was skipped
bool measureStretch(Instrument& instrument, const Dialogue& dialogue, Kind kind, const Stretch& stretch,
                    const Progress& progress, std::span<Reading> patches) {
    for (;;) {
        try {
            readStretch(instrument, dialogue, kind, stretch, progress, patches);
            dialogue.clear();
            return true;
        } catch (const HostError& error) {
            const Dialogue::Choice choice = dialogue.askAfterFailure(error.what());
            if (choice == Dialogue::Choice::skip) return false;
            if (choice == Dialogue::Choice::end) throw;
        }
    }
}

void calibrate(Instrument& instrument, const Dialogue& dialogue, const Progress& progress) {
    dialogue.say("\nCalibration: place the instrument on its white reference and press the button.");
    instrument.calibrate(dialogue.wait(progress));
    dialogue.say("Calibrated.");
}

Outcome measureAll(const Module& module, const MeasureOptions& options, const Dialogue& dialogue, Record& record) {
    const std::vector<Kind> passes = passesOf(options);
    const std::vector<Stretch> stretches = stretchesOf(options);
    Progress progress{0, passes.size() * stretches.size() * static_cast<std::size_t>(stretches.front().count)};
    Outcome outcome = Outcome::complete;
    const InterruptGuard interrupts;
    try {
        Instrument instrument(module);
        calibrate(instrument, dialogue, progress);
        for (const Kind kind : passes) {
            for (const Stretch& stretch : stretches) {
                if (measureStretch(instrument, dialogue, kind, stretch, progress, record.patches(stretch))) {
                    record.save(kind, stretch);
                    progress.done += static_cast<std::size_t>(stretch.count);
                } else {
                    outcome = Outcome::incomplete;
                }
            }
        }
    } catch (const Interrupted&) {
        dialogue.say("\nEnded; the instrument is closed, and what was read is kept.");
        outcome = Outcome::incomplete;
    }
    return outcome;
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
    const std::optional<Reference> reference = referenceOf(options);
    const std::vector<std::string> names = patchNames(options);
    for (const std::filesystem::path& file : {options.output, options.report}) {
        if (!file.empty()) requireWritable(file);
    }
    const Dialogue dialogue;
    const Module module(options.module);
    Record record(options, begin(module, options), names);
    introduce(dialogue, record.conditions(), options);
    try {
        const Outcome outcome = measureAll(module, options, dialogue, record);
        record.finish(dialogue, reference);
        return outcome;
    } catch (const HostError&) {
        record.finish(dialogue, std::nullopt);
        throw;
    }
}

} // namespace host

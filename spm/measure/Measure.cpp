// Prepares a run, carries it out and writes its results. Checks everything that can be checked before the instrument is
// opened, so that a user doesn't measure a chart only to find that it can't be saved.

#include "spm/measure/Measure.h"

#include "common/Text.h"
#include "spm/Error.h"
#include "spm/formats/PatchFile.h"
#include "spm/measure/Interrupt.h"
#include "spm/measure/OutputFile.h"
#include "spm/measure/PatchNames.h"
#include "spm/measure/Session.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <fmt/chrono.h>
#include <iterator>

namespace spm {

namespace {

/// Requires that the output files are writable, don't overwrite input files or each other, and don't exist unless they
/// may be replaced.
void checkOutputFiles(const MeasureOptions& options) {
    std::vector<std::filesystem::path> used{options.module, options.chart, options.reference};
    for (const std::filesystem::path& file : {options.output, options.report}) {
        if (file.empty()) continue;
        if (std::ranges::any_of(used, [&](const auto& other) { return !other.empty() && isSameFile(file, other); })) {
            throw UsageError(fmt::format("{} would be overwritten; use a different name for each file", file.string()));
        }
        requireWritable(file);
        const bool isContinued = options.firstRow > 1 && file == options.output;
        if (std::filesystem::exists(file) && !options.overwrite && !isContinued) {
            throw UsageError(
                fmt::format("{} exists; choose another file, or replace it with --overwrite", file.string()));
        }
        used.push_back(file);
    }
}

void requireLab(const MeasureOptions& options) {
    if (producesLab(options) || (options.reference.empty() && !options.withXyz)) return;
    throw UsageError(fmt::format("{} needs CIELab values, which are not measured; add --lab or --illuminant",
                                 options.withXyz ? "--xyz" : "--reference"));
}

/// Reads the reference, which must have a value for at least one of these patches.
std::shared_ptr<const Reference> referenceOf(const MeasureOptions& options, const std::vector<std::string>& names) {
    if (options.reference.empty()) return nullptr;
    Reference reference = readReference(options.reference);
    reference.formula = options.difference;
    reference.limits = options.limits;
    const auto isExpected = [&](const std::string& name) { return reference.patches.contains(name); };
    if (std::none_of(names.begin(), names.end(), isExpected)) {
        throw UsageError(fmt::format("the reference file {} has none of the patches: the first one is \"{}\", the "
                                     "reference has \"{}\"; use the same names",
                                     options.reference.string(), names.front(), reference.patches.begin()->first));
    }
    return std::make_shared<const Reference>(std::move(reference));
}

std::string timeNow() {
    return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}",
                       fmt::gmtime(std::chrono::system_clock::to_time_t(std::chrono::system_clock::now())));
}

struct Ending {
    Outcome outcome;
    /// Why the remaining patches were not measured.
    std::string reason;
    std::exception_ptr failure{};
};

Ending measureAll(const Module& module, const MeasureOptions& options, const Prompter& prompter, RunWriter& writer) {
    const InterruptGuard interrupts;
    try {
        return {Session(module, prompter, writer, options).measure(), ""};
    } catch (const Interrupted&) {
        prompter.say("\nStopped; the instrument is closed, and all measured values are kept.");
        return {Outcome::incomplete, "the run was interrupted"};
    } catch (const std::exception& error) {
        return {Outcome::incomplete, "the run ended: " + firstLine(error.what()), std::current_exception()};
    }
}

/// Copies the values of an earlier, incomplete run into this one. That run must have the same patches in the same
/// order, or some of them.
void loadEarlierRun(Run& run, const std::filesystem::path& file) {
    if (isSimulated(file) == run.simulation.empty()) {
        throw UsageError(fmt::format("{} has {} values, unlike this run; choose another output file", file.string(),
                                     run.simulation.empty() ? "simulated" : "measured"));
    }
    const bool hasSameConditions = hasConditions(file, run.conditions);
    auto place = run.readings.begin();
    for (Reading& earlier : readPatches(file, "the output file", PatchFileKind::run)) {
        if (earlier.lab && !hasSameConditions) {
            throw UsageError(fmt::format("{} has CIELab values for other conditions; use the options of that run, or "
                                         "choose another output file",
                                         file.string()));
        }
        if (run.conditions.isCalculated && !earlier.spectrum.empty()) {
            earlier.lab = toLab(earlier.spectrum, run.conditions);
        }
        place =
            std::find_if(place, run.readings.end(), [&](const Reading& patch) { return patch.name == earlier.name; });
        if (place == run.readings.end()) {
            throw UsageError(fmt::format("{} has the patch \"{}\", which this chart does not have in that "
                                         "place; use the chart and the options of that run",
                                         file.string(), common::printable(earlier.name)));
        }
        *place++ = std::move(earlier);
    }
}

Run prepareRun(const Module& module, const MeasureOptions& options, const std::vector<std::string>& names) {
    Run run;
    run.started = timeNow();
    run.module = options.module.string();
    run.version = module.version();
    run.simulation = module.simulation();
    run.conditions = options.conditions;
    run.withXyz = options.withXyz;
    run.patchesInRow = options.spots > 0 ? 0 : options.patchesInRow;
    std::ranges::transform(names, std::back_inserter(run.readings), [](const std::string& name) {
        return Reading{name, {}, {}};
    });
    if (options.firstRow > 1 && std::filesystem::exists(options.output)) loadEarlierRun(run, options.output);
    return run;
}

void announce(const Prompter& prompter, const Run& run, const MeasureOptions& options) {
    prompter.say(fmt::format("Module {}, version {}", run.module, run.version));
    if (!run.simulation.empty()) {
        prompter.say(fmt::format("SIMULATED: no instrument is used. The values come from a {}.", run.simulation));
    }
    if (passesOf(options).size() > 1) {
        prompter.say("Everything is measured twice: first the CIELab values, then the spectra.");
    }
}

void reportGaps(const Prompter& prompter, const Run& run) {
    if (measuredCount(run) == 0 || gaps(run).empty()) return;
    std::string text = coverage(run) + " measured";
    for (const Gap& gap : gaps(run)) {
        text += "; " + describe(gap);
    }
    prompter.say(text);
}

/// Writes all results. After a failure of the run, an error in writing is only shown: the failure is rethrown later.
void writeResults(const Prompter& prompter, RunWriter& writer, const Ending& ending) try {
    const InterruptGuard interrupts; // Ctrl-C must not keep the values from being written
    writer.finish(ending.reason);
    reportGaps(prompter, writer.currentRun());
    if (!ending.failure) writer.showComparison();
} catch (const std::exception& error) {
    if (!ending.failure) throw;
    prompter.say(error.what());
}

} // namespace

Outcome measure(const MeasureOptions& requested) {
    static_cast<void>(formatOf(requested)); // throws if it can't be determined
    requireLab(requested);
    checkOutputFiles(requested);
    const std::vector<std::string> names = patchNames(requested);
    MeasureOptions options = requested;
    options.rows = static_cast<std::int32_t>(names.size()) / options.patchesInRow; // not used for spots
    if (static_cast<std::size_t>(options.firstRow) > stripsOf(options).size()) {
        throw UsageError(fmt::format("--first-row is {}, but there are only {} rows or spots", options.firstRow,
                                     stripsOf(options).size()));
    }
    std::shared_ptr<const Reference> reference = referenceOf(options, names);
    const Prompter prompter;
    const Module module(options.module);
    Run run = prepareRun(module, options, names);
    run.reference = std::move(reference);
    RunWriter writer(options, prompter, std::move(run));
    announce(prompter, writer.currentRun(), options);
    const Ending ending = measureAll(module, options, prompter, writer);
    writeResults(prompter, writer, ending);
    if (ending.failure) std::rethrow_exception(ending.failure);
    if (!gaps(writer.currentRun()).empty() || ending.outcome != Outcome::complete) return Outcome::incomplete;
    const std::optional<Comparison> comparison = compare(writer.currentRun());
    return !comparison || comparison->isWithinLimits ? Outcome::complete : Outcome::outOfTolerance;
}

} // namespace spm

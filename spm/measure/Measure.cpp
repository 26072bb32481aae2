// A measuring run: the files before and after it.

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

/// Nothing that is read may be written over, nothing written twice, and an earlier file only when that is wanted.
void requireDifferentFiles(const MeasureOptions& options) {
    std::vector<std::filesystem::path> taken{options.module, options.chart, options.reference};
    for (const std::filesystem::path& file : {options.output, options.report}) {
        if (file.empty()) continue;
        if (std::ranges::any_of(taken, [&](const auto& other) { return !other.empty() && isSameFile(file, other); })) {
            throw UsageError(fmt::format("{} would be written over; give each file a name of its own", file.string()));
        }
        requireWritable(file);
        const bool isCompleted = options.firstRow > 1 && file == options.output;
        if (std::filesystem::exists(file) && !options.overwrite && !isCompleted) {
            throw UsageError(
                fmt::format("{} exists; name another file, or replace it with --overwrite", file.string()));
        }
        taken.push_back(file);
    }
}

void requireLab(const MeasureOptions& options) {
    if (givesLab(options) || (options.reference.empty() && !options.withXyz)) return;
    throw UsageError(fmt::format("{} needs CIELab values, which are not measured; add --lab or --illuminant",
                                 options.withXyz ? "--xyz" : "--reference"));
}

/// The expected values, of which some must be of these patches.
std::shared_ptr<const Reference> referenceOf(const MeasureOptions& options, const std::vector<std::string>& names) {
    if (options.reference.empty()) return nullptr;
    Reference reference = readReference(options.reference);
    reference.formula = options.difference;
    reference.limits = options.limits;
    const auto isExpected = [&](const std::string& name) { return reference.patches.contains(name); };
    if (std::none_of(names.begin(), names.end(), isExpected)) {
        throw UsageError(fmt::format("no patch has the name of one in the reference file {}: \"{}\" is to be measured, "
                                     "the reference has \"{}\"; name the patches as the reference does",
                                     options.reference.string(), names.front(), reference.patches.begin()->first));
    }
    return std::make_shared<const Reference>(std::move(reference));
}

std::string timeNow() {
    return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}",
                       fmt::gmtime(std::chrono::system_clock::to_time_t(std::chrono::system_clock::now())));
}

/// How the measuring ended.
struct Ending {
    Outcome outcome;
    /// Why patches were not reached.
    std::string reason;
    std::exception_ptr failure{};
};

Ending measureAll(const Module& module, const MeasureOptions& options, const Prompter& prompter, RunWriter& writer) {
    const InterruptGuard interrupts;
    try {
        return {Session(module, prompter, writer, options).measure(), ""};
    } catch (const Interrupted&) {
        prompter.say("\nEnded; the instrument is closed, and what was read is kept.");
        return {Outcome::incomplete, "the run was interrupted"};
    } catch (const std::exception& error) {
        return {Outcome::incomplete, "the run ended: " + firstLine(error.what()), std::current_exception()};
    }
}

/// Takes over the values of a run that was broken off, which has the same patches in the same order, or some of them.
void resume(Run& run, const std::filesystem::path& file) {
    if (isSimulated(file) == run.simulation.empty()) {
        throw UsageError(fmt::format("{} has {} values; name another output file", file.string(),
                                     run.simulation.empty() ? "simulated" : "measured"));
    }
    const bool isForRun = isFor(file, run.conditions);
    auto place = run.readings.begin();
    for (Reading& earlier : readPatches(file, "the output file", PatchFileKind::run)) {
        if (earlier.lab && !isForRun) {
            throw UsageError(fmt::format("{} has CIELab values for other conditions; give the options of that run, or "
                                         "name another output file",
                                         file.string()));
        }
        if (run.conditions.isCalculated && !earlier.spectrum.empty()) {
            earlier.lab = toLab(earlier.spectrum, run.conditions);
        }
        place =
            std::find_if(place, run.readings.end(), [&](const Reading& patch) { return patch.name == earlier.name; });
        if (place == run.readings.end()) {
            throw UsageError(fmt::format("{} has the patch \"{}\", which is not to be measured, or elsewhere; give the "
                                         "chart and the options of that run",
                                         file.string(), common::printable(earlier.name)));
        }
        *place++ = std::move(earlier);
    }
}

Run begin(const Module& module, const MeasureOptions& options, const std::vector<std::string>& names) {
    Run run;
    run.started = timeNow();
    run.module = options.module.string();
    run.version = module.version();
    run.simulation = module.simulation();
    run.conditions = options.conditions;
    run.withXyz = options.withXyz;
    run.patchesInRow = options.spots > 0 ? 0 : options.patches;
    std::ranges::transform(names, std::back_inserter(run.readings), [](const std::string& name) {
        return Reading{name, {}, {}};
    });
    if (options.firstRow > 1 && std::filesystem::exists(options.output)) resume(run, options.output);
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

/// What was left out, and why.
void sumUp(const Prompter& prompter, const Run& run) {
    if (measuredCount(run) == 0 || gaps(run).empty()) return;
    std::string text = coverage(run) + " measured";
    for (const Gap& gap : gaps(run)) {
        text += "; " + describe(gap);
    }
    prompter.say(text);
}

} // namespace

Outcome measure(const MeasureOptions& wanted) {
    static_cast<void>(formatOf(wanted));
    requireLab(wanted);
    requireDifferentFiles(wanted);
    const std::vector<std::string> names = patchNames(wanted);
    MeasureOptions options = wanted;
    options.rows = static_cast<std::int32_t>(names.size()) / options.patches;
    if (static_cast<std::size_t>(options.firstRow) > stripsOf(options).size()) {
        throw UsageError(fmt::format("--first-row is {}, but there are {} rows or spots", options.firstRow,
                                     stripsOf(options).size()));
    }
    std::shared_ptr<const Reference> reference = referenceOf(options, names);
    const Prompter prompter;
    const Module module(options.module);
    Run begun = begin(module, options, names);
    begun.reference = std::move(reference);
    RunWriter writer(options, prompter, std::move(begun));
    introduce(prompter, writer.measured(), options);
    const Ending ending = measureAll(module, options, prompter, writer);
    try {
        const InterruptGuard interrupts; // what was read is written all the same
        writer.finish(ending.reason);
        sumUp(prompter, writer.measured());
        if (!ending.failure) writer.showComparison();
    } catch (const std::exception& error) {
        if (!ending.failure) throw;
        prompter.say(error.what());
    }
    if (ending.failure) std::rethrow_exception(ending.failure);
    if (!gaps(writer.measured()).empty() || ending.outcome != Outcome::complete) return Outcome::incomplete;
    const std::optional<Comparison> comparison = compare(writer.measured());
    return !comparison || comparison->isWithinLimits ? Outcome::complete : Outcome::outOfTolerance;
}

} // namespace spm

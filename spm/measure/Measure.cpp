#include "spm/measure/Measure.h"

#include "spm/Error.h"
#include "spm/measure/Interrupt.h"
#include "spm/measure/RunWriter.h"
#include "spm/measure/Session.h"

#include <chrono>
#include <fmt/chrono.h>
#include <fmt/ranges.h>

namespace spm {

namespace {

std::string timeNow() {
    return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}",
                       fmt::gmtime(std::chrono::system_clock::to_time_t(std::chrono::system_clock::now())));
}

/// @throws UsageError  if the earlier part of the run is simulated, and the other isn't
void describeModule(Plan& plan, const Module& module) {
    const std::string simulation = module.simulation();
    if (plan.isResumed && simulation.empty() != plan.run.simulation.empty()) {
        throw UsageError(fmt::format("{} has {} values, unlike this run", plan.output.string(),
                                     simulation.empty() ? "simulated" : "measured"),
                         "choose another output file");
    }
    plan.run.started = timeNow();
    plan.run.module = plan.module.string();
    plan.run.version = module.version();
    plan.run.simulation = simulation;
}

void announce(const Prompter& prompter, const Run& run) {
    prompter.say(fmt::format("Module {}, version {}", run.module, run.version));
    if (run.simulation.empty()) return;
    prompter.say(fmt::format("SIMULATED: no instrument is used. The values come from a {}.", run.simulation));
}

struct Ending {
    Outcome outcome;
    /// Why the remaining patches were not measured.
    std::string reason;
};

Ending measureAll(const Module& module, Plan& plan, const Prompter& prompter, RunWriter& writer) {
    const InterruptGuard interrupts;
    try {
        Session(module, prompter, writer, plan.run).measure();
        return {Outcome::complete, ""};
    } catch (const Interrupted&) {
        prompter.say("\nStopped; the instrument is closed, and all measured values are kept.");
        return {Outcome::incomplete, "the run was interrupted"};
    } catch (const std::exception& error) {
        prompter.say("spm: " + std::string(error.what()));
        return {Outcome::failed, "the run ended: " + firstLine(error.what())};
    }
}

/// Gives the patches that were not reached a reason.
void explainMissing(Run& run, const std::string& reason) {
    for (Patch& patch : run.patches) {
        if (!patch.reading && patch.missingReason.empty()) patch.missingReason = reason;
    }
}

/// Says what was measured, where it is, and how to go on.
std::string summaryOf(const Plan& plan) {
    std::vector<std::string> files;
    for (const std::filesystem::path& file : {plan.output, plan.report}) {
        if (!file.empty()) files.push_back(file.string());
    }
    if (measuredCount(plan.run.patches) == 0) return "Nothing was measured, and no file was written.";
    std::string text = coverage(plan.run);
    if (!files.empty()) text += fmt::format(", in {}", fmt::join(files, " and "));
    for (const std::string& gap : gaps(plan.run)) {
        text += '\n' + gap;
    }
    if (isComplete(plan.run.patches) || plan.output.empty()) return text;
    return text + "\nTo go on: " + plan.resumeCommand;
}

/// Writes all results, and describes them.
/// @return whether everything was written
bool writeResults(const Plan& plan, const Prompter& prompter, RunWriter& writer, const Ending& ending) {
    const InterruptGuard interrupts; // Ctrl-C must not keep the values from being written
    const std::string failures = writer.finish();
    if (!failures.empty()) prompter.say("spm: " + failures);
    if (ending.outcome != Outcome::failed) writer.showComparison();
    if (failures.empty()) prompter.say(summaryOf(plan));
    return failures.empty();
}

} // namespace

Outcome measure(const MeasureOptions& options) {
    Plan plan = planOf(options);
    const Prompter prompter(plan.waitLimit);
    const Module module(plan.module);
    describeModule(plan, module);
    announce(prompter, plan.run);
    RunWriter writer(plan, prompter);
    const Ending ending = measureAll(module, plan, prompter, writer);
    explainMissing(plan.run, ending.reason);
    const bool isWritten = writeResults(plan, prompter, writer, ending);
    if (ending.outcome == Outcome::failed || !isWritten) return Outcome::failed;
    if (!isComplete(plan.run.patches)) return Outcome::incomplete;
    const std::optional<Comparison> comparison = compare(plan.run);
    return !comparison || comparison->isWithinLimits ? Outcome::complete : Outcome::outOfTolerance;
}

} // namespace spm

#include "spm/measure/Measure.h"

#include "spm/Error.h"
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

/// Says what measures.
/// @throws UsageError  if the earlier part of the run is simulated, and the other isn't
void describeModule(Plan& plan, const Module& module, const Prompter& prompter) {
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
    prompter.say(fmt::format("Module {}, version {}", plan.run.module, plan.run.version));
    if (simulation.empty()) return;
    prompter.say(fmt::format("SIMULATED: no instrument is used. The values come from a {}.", simulation));
}

/// Measures, and gives the patches that were not reached a reason.
Outcome measureAll(Plan& plan, const Module& module, const Prompter& prompter, RunWriter& writer) {
    const auto end = [&](Outcome outcome, const std::string& text, const std::string& reason) {
        prompter.say(text);
        for (Patch& patch : plan.run.patches) {
            if (patch.missingReason == notReached) patch.missingReason = reason;
        }
        return outcome;
    };
    try {
        measureStrips(module, prompter, writer, plan.run);
        return isComplete(plan.run.patches) ? Outcome::complete : Outcome::incomplete;
    } catch (const Interrupted&) {
        return end(Outcome::incomplete, "\nStopped; the instrument is closed, and all measured values are kept.",
                   "the run was interrupted");
    } catch (const std::exception& error) {
        const std::string text = error.what();
        return end(Outcome::failed, "spm: " + text, "the run ended: " + firstLine(text));
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

} // namespace

Outcome measure(const MeasureOptions& options) {
    Plan plan = planOf(options);
    const Prompter prompter(plan.waitLimit);
    const Module module(plan.module);
    describeModule(plan, module, prompter);
    RunWriter writer(plan, prompter);
    const Outcome outcome = measureAll(plan, module, prompter, writer);
    const bool isWritten = writer.finish();
    if (outcome != Outcome::failed) writer.showComparison();
    if (!isWritten) return Outcome::failed;
    prompter.say(summaryOf(plan));
    const std::optional<Comparison> comparison = compare(plan.run);
    const bool isOut = outcome == Outcome::complete && comparison && !comparison->isWithinLimits;
    return isOut ? Outcome::outOfTolerance : outcome;
}

} // namespace spm

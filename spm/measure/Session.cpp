// The dialogue of a run. A strip that failed, or whose values look wrong, has a problem, and the user decides what to
// do about it; before a strip is repeated, a lost connection or calibration is restored.

#include "spm/measure/Session.h"

#include "common/Text.h"
#include "spm/Error.h"
#include "spm/measure/Interrupt.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

namespace spm {

namespace {

std::string instruction(std::span<const Patch> patches) {
    const std::string first = common::printable(patches.front().name);
    if (patches.size() == 1) return fmt::format("place the instrument on \"{}\" and press the button.", first);
    return fmt::format("press the button and slide the instrument from \"{}\" to \"{}\".", first,
                       common::printable(patches.back().name));
}

} // namespace

Session::Session(const Module& loadedModule, const Prompter& userPrompter, RunWriter& output, Run& measuredRun)
    : module(loadedModule), prompter(userPrompter), writer(output), run(measuredRun), strips(stripsOf(measuredRun)) {}

void Session::measure() {
    if (isComplete(run.patches)) return;
    instrument.emplace(module);
    run.instrument = instrument->name();
    run.conditions.measurement = instrument->illumination();
    calibrate();
    for (std::size_t i = 0; i < strips.size(); ++i) {
        if (isComplete(patchesOf(run, strips[i]))) continue;
        measureStrip(i);
        InterruptGuard::check();
    }
}

void Session::calibrate() {
    while (!tryToCalibrate()) {
        prompter.ask({{'r', "Calibrate again"}});
    }
    InterruptGuard::check();
}

/// Reconnects first if the connection is lost.
bool Session::tryToCalibrate() try {
    if (!instrument || !instrument->isResponding()) {
        instrument.reset();
        instrument.emplace(module);
    }
    prompter.say("\nCalibration: place the instrument on its white reference and press the button.");
    instrument->calibrate(prompter.waiter(progress()));
    prompter.say("Calibrated.");
    return true;
} catch (const Error& error) {
    if (!prompter.canAsk()) throw;
    prompter.say(error.what());
    prompter.say("Check the cable, clean the white reference, and place the instrument flat on it.");
    return false;
}

/// Measures a strip, repeatedly if the user wishes, until it is kept or skipped.
void Session::measureStrip(std::size_t index) {
    const std::span<Patch> patches = patchesOf(run, strips[index]);
    while (!isComplete(patches)) {
        const Attempt result = attempt(index);
        switch (result.problem.empty() ? Decision::keep : decide(result)) {
        case Decision::keep:
            keep(result.readings, strips[index]);
            break;
        case Decision::take:
            take(result.readings, *result.better);
            break;
        case Decision::repeat:
            if (result.hasFailed) recover();
            break;
        case Decision::skip:
            std::ranges::for_each(patches, [&](Patch& patch) {
                if (!patch.reading) patch.missingReason = "skipped: " + firstLine(result.problem);
            });
            return;
        }
    }
}

Session::Attempt Session::attempt(std::size_t index) try {
    const Strip& strip = strips[index];
    Attempt result{read(strip)};
    const std::size_t found = result.readings.size();
    if (found < strip.count) {
        // Nobody knows which patches were missed.
        return {{},
                fmt::format("{}: {} of {} patches were found; slide more slowly, and start and end on unprinted paper",
                            strip.name, found, strip.count)};
    }
    if (run.reference != nullptr) result.better = findBetterFit(result.readings, index, strips, run);
    if (result.better) {
        result.problem =
            fmt::format("{} does not match the reference (mean CIEDE2000 {:.1f}); {} matches better ({:.1f})",
                        strip.name, result.better->askedMean, result.better->name, result.better->mean);
    }
    return result;
} catch (const Error& error) {
    return {{}, error.what(), true};
}

/// @return a reading for each patch that was found
std::vector<Reading> Session::read(const Strip& strip) {
    const std::span<const Patch> patches = patchesOf(run, strip);
    prompter.say(fmt::format("\n{}: {}", strip.name, instruction(patches)));
    const auto count = static_cast<std::int32_t>(strip.count);
    const Instrument::Wait wait = prompter.waiter(progress());
    std::vector<Reading> readings;
    if (run.conditions.isCalculated) {
        std::ranges::transform(instrument->readSpectra(count, wait), std::back_inserter(readings),
                               [&](const Spectrum& spectrum) {
                                   return Reading{toLab(spectrum, run.conditions), spectrum};
                               });
    } else {
        std::ranges::transform(instrument->read(count, wait), std::back_inserter(readings),
                               [](const SPM_LAB& lab) { return Reading{lab}; });
    }
    for (std::size_t i = 0; i < readings.size(); ++i) {
        requireFinite(patches[i].name, readings[i]);
    }
    return readings;
}

/// Reports a problem and asks the user. If there is nobody to ask, a complete strip is kept.
/// @throws Error  if there is nobody to ask and the strip is incomplete
Session::Decision Session::decide(const Attempt& attempt) const {
    if (!prompter.canAsk() && attempt.readings.empty()) throw Error(attempt.problem);
    prompter.say(attempt.problem);
    if (!prompter.canAsk()) return Decision::keep;
    std::vector<Choice> choices{{'r', "Measure it again"}};
    if (attempt.better && !isComplete(patchesOf(run, strips[attempt.better->strip]))) {
        choices.push_back({'t', "take these values as " + attempt.better->name});
    }
    if (!attempt.readings.empty()) choices.push_back({'k', "keep them as they are"});
    choices.push_back({'s', "skip it"});
    return static_cast<Decision>(prompter.ask(choices));
}

/// Restores a lost connection or calibration, which may have caused a failure.
void Session::recover() {
    if (!instrument->isResponding() || !instrument->isCalibrated()) calibrate();
}

/// Gives the patches their values, except those that were measured before.
void Session::keep(const std::vector<Reading>& readings, const Strip& strip) {
    const std::span<Patch> patches = patchesOf(run, strip);
    for (std::size_t i = 0; i < readings.size(); ++i) {
        if (!patches[i].reading) patches[i].reading = readings[i];
        patches[i].missingReason.clear();
    }
    prompter.say(strip.name + " measured.");
    writer.save(strip);
}

void Session::take(std::vector<Reading> readings, const Fit& fit) {
    if (fit.isReversed) std::ranges::reverse(readings);
    keep(readings, strips[fit.strip]);
}

} // namespace spm

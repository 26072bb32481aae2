// The dialogue of a run. A strip that failed, or whose values look wrong, has a problem, and the user decides what to
// do about it; before a strip is repeated, a lost connection or calibration is restored.

#include "spm/measure/Session.h"

#include "common/Text.h"
#include "spm/Error.h"
#include "spm/Instrument.h"

#include <algorithm>
#include <fmt/format.h>
#include <optional>

namespace spm {

namespace {

std::string instruction(std::span<const Patch> patches) {
    const std::string first = common::printable(patches.front().name);
    if (patches.size() == 1) return fmt::format("place the instrument on \"{}\" and press the button.", first);
    return fmt::format("press the button and slide the instrument from \"{}\" to \"{}\".", first,
                       common::printable(patches.back().name));
}

std::string nameOf(const Fit& fit) {
    return fit.strip.name + (fit.isReversed ? " in reverse" : "");
}

struct Attempt {
    /// A reading for each patch of the strip; empty if it failed, or if some were missed.
    std::vector<Reading> readings;
    /// Why the user may not want to keep them; empty if there is no reason.
    std::string problem{};
    std::optional<Fit> better{};
};

class Session {
public:
    Session(const Module& loadedModule, const Prompter& userPrompter, RunWriter& output, Run& measuredRun)
        : module(loadedModule), prompter(userPrompter), writer(output), run(measuredRun) {}

    void measure() {
        instrument.emplace(module);
        run.instrument = instrument->name();
        run.conditions.measurement = instrument->illumination();
        calibrate();
        for (const Strip& strip : stripsOf(run)) {
            if (isComplete(patchesOf(run, strip))) continue;
            measureStrip(strip);
            Prompter::requireNoInterrupt();
        }
    }

private:
    void calibrate() {
        while (!tryToCalibrate()) {
            prompter.ask({{'r', "Calibrate again"}});
        }
        Prompter::requireNoInterrupt();
    }

    /// Reconnects first if the connection is lost.
    bool tryToCalibrate() try {
        if (!instrument || !instrument->isResponding()) {
            instrument.reset();
            instrument.emplace(module);
        }
        prompter.say("\nCalibration: place the instrument on its white reference and press the button.");
        instrument->calibrate(prompter.waiter(coverage(run)));
        prompter.say("Calibrated.");
        return true;
    } catch (const Error& error) {
        if (!prompter.canAsk()) throw;
        prompter.say(error.what());
        prompter.say("Check the cable, clean the white reference, and place the instrument flat on it.");
        return false;
    }

    /// Measures a strip, repeatedly if the user wishes, until it is kept or skipped. Values that the user takes for
    /// another strip don't end that.
    void measureStrip(const Strip& strip) {
        const std::span<Patch> patches = patchesOf(run, strip);
        for (;;) {
            Attempt result = attempt(strip);
            switch (result.problem.empty() ? 'k' : decide(result)) {
            case 'k':
                return keep(result.readings, strip);
            case 't':
                if (result.better->isReversed) std::ranges::reverse(result.readings);
                keep(result.readings, result.better->strip);
                if (isComplete(patches)) return;
                break;
            case 's':
                for (Patch& patch : patches) {
                    patch.missingReason = "skipped: " + firstLine(result.problem);
                }
                return;
            default: // a lost connection or calibration may be the cause
                if (!instrument->isResponding() || !instrument->isCalibrated()) calibrate();
            }
        }
    }

    Attempt attempt(const Strip& strip) try {
        prompter.say(fmt::format("\n{}: {}", strip.name, instruction(patchesOf(run, strip))));
        Attempt result{
            instrument->read(static_cast<std::int32_t>(strip.count), run.conditions, prompter.waiter(coverage(run)))};
        if (const std::size_t found = result.readings.size(); found < strip.count) {
            // Nobody knows which patches were missed.
            return {
                {},
                fmt::format("{}: {} of {} patches were found; slide more slowly, and start and end on unprinted paper",
                            strip.name, found, strip.count)};
        }
        if (run.reference != nullptr) result.better = findBetterFit(result.readings, strip, run);
        if (result.better) {
            result.problem = fmt::format("{} does not match the reference; {} does (mean CIEDE2000 {:.1f})", strip.name,
                                         nameOf(*result.better), result.better->mean);
        }
        return result;
    } catch (const Error& error) {
        return {{}, error.what()};
    }

    /// Reports a problem and asks the user. If there is nobody to ask, a complete strip is kept.
    /// @return the letter of the user's choice
    /// @throws Error  if there is nobody to ask and the strip is incomplete
    char decide(const Attempt& attempt) const {
        if (!prompter.canAsk() && attempt.readings.empty()) throw Error(attempt.problem);
        prompter.say(attempt.problem);
        if (!prompter.canAsk()) return 'k';
        std::vector<std::pair<char, std::string>> choices{{'r', "Measure it again"}};
        if (attempt.better && !isComplete(patchesOf(run, attempt.better->strip))) {
            choices.emplace_back('t', "take these values as " + nameOf(*attempt.better));
        }
        if (!attempt.readings.empty()) choices.emplace_back('k', "keep them as they are");
        choices.emplace_back('s', "skip it");
        return prompter.ask(choices);
    }

    /// Gives the patches their values, except those that were measured before.
    void keep(const std::vector<Reading>& readings, const Strip& strip) {
        for (std::size_t i = 0; i < readings.size(); ++i) {
            std::optional<Reading>& reading = run.patches[strip.first + i].reading;
            if (!reading) reading = readings[i];
        }
        prompter.say(strip.name + " measured.");
        writer.save(strip);
    }

    const Module& module;
    const Prompter& prompter;
    RunWriter& writer;
    Run& run;
    std::optional<Instrument> instrument;
};

} // namespace

void measureStrips(const Module& module, const Prompter& prompter, RunWriter& writer, Run& run) {
    if (!isComplete(run.patches)) Session(module, prompter, writer, run).measure();
}

} // namespace spm

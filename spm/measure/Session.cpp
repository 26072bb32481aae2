// The dialogue of a run. A strip that failed, or whose values look wrong, has a problem, and the user decides what to
// do about it; before a strip is repeated, a lost connection or calibration is restored.

#include "spm/measure/Session.h"

#include "common/Text.h"
#include "spm/Error.h"
#include "spm/measure/Fit.h"
#include "spm/measure/Interrupt.h"

#include <algorithm>
#include <fmt/format.h>

namespace spm {

namespace {

/// Sets a member of each patch, and drops the patches that have no value.
template <class Value, class Member>
void assign(std::vector<Value> values, Member member, std::vector<Reading>& patches) {
    patches.resize(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        patches[i].*member = std::move(values[i]);
    }
}

const char* nameOf(Quantity quantity) {
    return quantity == Quantity::lab ? "CIELab" : "spectra";
}

std::string instruction(std::span<const Reading> patches) {
    const std::string first = common::printable(patches.front().name);
    if (patches.size() == 1) return fmt::format("place the instrument on \"{}\" and press the button.", first);
    return fmt::format("press the button and slide the instrument from \"{}\" to \"{}\".", first,
                       common::printable(patches.back().name));
}

} // namespace

std::vector<Strip> stripsOf(const MeasureOptions& options) {
    const bool isSpots = options.spots > 0;
    const std::int32_t strips = isSpots ? options.spots : options.rows;
    const std::int32_t count = isSpots ? 1 : options.patchesInRow;
    std::vector<Strip> all;
    all.reserve(static_cast<std::size_t>(strips));
    for (std::int32_t i = 0; i < strips; ++i) {
        all.push_back({static_cast<std::size_t>(i) * static_cast<std::size_t>(count), count,
                       fmt::format("{} {} of {}", isSpots ? "Spot" : "Row", i + 1, strips)});
    }
    return all;
}

Session::Session(const Module& loadedModule, const Prompter& userPrompter, RunWriter& output,
                 const MeasureOptions& options)
    : module(loadedModule), prompter(userPrompter), writer(output), passes(passesOf(options)),
      strips(stripsOf(options)), firstStrip(static_cast<std::size_t>(options.firstRow - 1)) {
    progress.all = passes.size() * (strips.size() - firstStrip) * static_cast<std::size_t>(strips.front().count);
}

Outcome Session::measure() {
    instrument.emplace(module);
    writer.setInstrument(instrument->name(), instrument->illumination());
    calibrate();
    Outcome outcome = Outcome::complete;
    for (const Quantity quantity : passes) {
        for (std::size_t i = firstStrip; i < strips.size(); ++i) {
            if (!measureStrip(quantity, strips[i])) outcome = Outcome::incomplete;
            InterruptGuard::check();
        }
    }
    return outcome;
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
    prompter.runMeasurement(
        progress, [&](const auto& wait) { instrument->calibrate(wait); }, [&] { writer.saveIfDue(); });
    prompter.say("Calibrated.");
    return true;
} catch (const Error& error) {
    if (!prompter.canAsk()) throw;
    prompter.say(error.what());
    prompter.say("Check the cable, clean the white reference, and place the instrument flat on it.");
    return false;
}

/// Measures a strip, repeatedly if the user wishes, until it is kept or skipped.
/// @return whether all its patches were measured
bool Session::measureStrip(Quantity quantity, const Strip& strip) {
    for (;;) {
        const Attempt result = attempt(quantity, strip);
        const Decision decision = result.problem.empty() ? Decision::keep : decide(result, strip);
        if (decision == Decision::repeat) {
            if (result.readings.empty()) recover();
            continue;
        }
        progress.done += static_cast<std::size_t>(strip.count);
        if (decision == Decision::keep) {
            keep(result, quantity, strip);
            return result.readings.size() == static_cast<std::size_t>(strip.count);
        }
        markMissing(writer.patches(strip), quantity, "skipped: " + firstLine(result.problem));
        return false;
    }
}

Session::Attempt Session::attempt(Quantity quantity, const Strip& strip) try {
    Attempt result{read(quantity, strip), ""};
    result.problem = findProblem(result.readings, quantity, strip);
    return result;
} catch (const Error& error) {
    return {{}, error.what()};
}

std::vector<Reading> Session::read(Quantity quantity, const Strip& strip) {
    const std::span<const Reading> patches = writer.patches(strip);
    std::vector<Reading> readings(patches.begin(), patches.end());
    prompter.say(fmt::format("\n{}: {}", titleOf(quantity, strip), instruction(patches)));
    prompter.runMeasurement(
        progress,
        [&](const auto& wait) {
            if (quantity == Quantity::lab) {
                assign(instrument->read(strip.count, wait), &Reading::lab, readings);
            } else {
                assign(instrument->readSpectra(strip.count, wait), &Reading::spectrum, readings);
            }
        },
        [&] { writer.saveIfDue(); });
    const Conditions& conditions = writer.currentRun().conditions;
    for (Reading& reading : readings) {
        if (conditions.isCalculated) reading.lab = toLab(reading.spectrum, conditions);
        requireFinite(reading);
    }
    return readings;
}

std::string Session::findProblem(std::span<const Reading> readings, Quantity quantity, const Strip& strip) const {
    const auto count = static_cast<std::size_t>(strip.count);
    if (readings.size() < count) {
        return fmt::format("{}: {} of {} patches were found; slide more slowly, and start and end on unprinted paper",
                           strip.name, readings.size(), count);
    }
    const bool hasNewLab = quantity == Quantity::lab || writer.currentRun().conditions.isCalculated;
    if (writer.currentRun().reference == nullptr || !hasNewLab) return "";
    return findBetterFit(readings, strip, strips, writer.currentRun()).value_or("");
}

/// Reports a problem and asks the user. If there is nobody to ask, a complete strip is kept.
/// @throws Error  if there is nobody to ask and the strip is incomplete
Session::Decision Session::decide(const Attempt& attempt, const Strip& strip) const {
    const auto count = static_cast<std::size_t>(strip.count);
    if (!prompter.canAsk() && attempt.readings.size() < count) throw Error(attempt.problem);
    prompter.say(attempt.problem);
    if (!prompter.canAsk()) return Decision::keep;
    std::vector<Choice> choices{{'r', "Measure it again"}};
    if (!attempt.readings.empty()) choices.push_back({'k', "keep these values"});
    choices.push_back({'s', "skip it"});
    return static_cast<Decision>(prompter.ask(choices));
}

/// Restores a lost connection or calibration, which may have caused a failure.
void Session::recover() {
    if (!instrument->isResponding() || !instrument->isCalibrated()) calibrate();
}

void Session::keep(const Attempt& attempt, Quantity quantity, const Strip& strip) {
    const std::span<Reading> patches = writer.patches(strip);
    const std::size_t found = attempt.readings.size();
    std::ranges::copy(attempt.readings, patches.begin());
    markMissing(patches.subspan(found), quantity, fmt::format("{} of {} patches were found", found, patches.size()));
    prompter.say(fmt::format("{} measured.", titleOf(quantity, strip)));
    writer.save(quantity, strip);
}

void Session::markMissing(std::span<Reading> patches, Quantity quantity, const std::string& reason) const {
    for (Reading& patch : patches) {
        patch.missingReason = passes.size() > 1 ? fmt::format("{}: {}", nameOf(quantity), reason) : reason;
    }
}

std::string Session::titleOf(Quantity quantity, const Strip& strip) const {
    return fmt::format("{}, {}", strip.name, nameOf(quantity));
}

} // namespace spm

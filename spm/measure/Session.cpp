// The dialogue with the person who measures. Whatever goes wrong with a strip is a doubt, about which the person
// decides; before a strip is repeated, a lost connection or calibration is restored.

#include "spm/measure/Session.h"

#include "common/Text.h"
#include "spm/Error.h"
#include "spm/measure/Fit.h"
#include "spm/measure/Interrupt.h"

#include <algorithm>
#include <fmt/format.h>

namespace spm {

namespace {

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
    const std::int32_t count = isSpots ? 1 : options.patches;
    std::vector<Strip> all;
    all.reserve(static_cast<std::size_t>(strips));
    for (std::int32_t i = 0; i < strips; ++i) {
        all.push_back({static_cast<std::size_t>(i) * static_cast<std::size_t>(count), count,
                       fmt::format("{} {} of {}", isSpots ? "Spot" : "Row", i + 1, strips)});
    }
    return all;
}

Session::Session(const Module& loaded, const Prompter& shown, RunWriter& kept, const MeasureOptions& chosen)
    : module(loaded), prompter(shown), writer(kept), passes(passesOf(chosen)), strips(stripsOf(chosen)),
      firstStrip(static_cast<std::size_t>(chosen.firstRow - 1)) {
    progress.all = passes.size() * (strips.size() - firstStrip) * static_cast<std::size_t>(strips.front().count);
}

Outcome Session::measure() {
    instrument.emplace(module);
    writer.setInstrument(instrument->name(), instrument->illumination());
    calibrate();
    Outcome outcome = Outcome::complete;
    for (const Quantity quantity : passes) {
        for (std::size_t i = firstStrip; i < strips.size(); ++i) {
            if (!measure(quantity, strips[i])) outcome = Outcome::incomplete;
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

/// Connects first if that is lost.
bool Session::tryToCalibrate() try {
    if (!instrument || !instrument->isAnswering()) {
        instrument.reset();
        instrument.emplace(module);
    }
    prompter.say("\nCalibration: place the instrument on its white reference and press the button.");
    prompter.await(
        progress, [&](const auto& wait) { instrument->calibrate(wait); }, [&] { writer.saveDue(); });
    prompter.say("Calibrated.");
    return true;
} catch (const Error& error) {
    if (!prompter.canAsk()) throw;
    prompter.say(error.what());
    prompter.say("Check the cable, clean the white reference, and place the instrument flat on it.");
    return false;
}

/// Measures a strip until it was read or is not wanted any more.
/// @return whether all of it was read
bool Session::measure(Quantity quantity, const Strip& strip) {
    for (;;) {
        Attempt result = attempt(quantity, strip);
        const char answer = result.doubt.empty() ? 'k' : decide(result, strip);
        if (answer == 'r') {
            if (result.read.empty()) restore();
            continue;
        }
        progress.done += static_cast<std::size_t>(strip.count);
        if (answer == 'k') {
            keep(result, quantity, strip);
            return result.read.size() == static_cast<std::size_t>(strip.count);
        }
        noteGap(writer.patches(strip), quantity, "skipped: " + firstLine(result.doubt));
        return false;
    }
}

/// After a failure, which a lost connection or calibration may have caused.
void Session::restore() {
    if (!instrument->isAnswering() || !instrument->isCalibrated()) calibrate();
}

Session::Attempt Session::attempt(Quantity quantity, const Strip& strip) try {
    Attempt result{read(quantity, strip), ""};
    result.doubt = findDoubt(result.read, quantity, strip);
    return result;
} catch (const Error& error) {
    return {{}, error.what()};
}

std::vector<Reading> Session::read(Quantity quantity, const Strip& strip) {
    const std::span<const Reading> patches = writer.patches(strip);
    std::vector<Reading> read(patches.begin(), patches.end());
    prompter.say(fmt::format("\n{}: {}", titleOf(quantity, strip), instruction(patches)));
    prompter.await(
        progress,
        [&](const auto& wait) {
            if (quantity == Quantity::lab) {
                assign(instrument->read(strip.count, wait), &Reading::lab, read);
            } else {
                assign(instrument->readSpectra(strip.count, wait), &Reading::spectrum, read);
            }
        },
        [&] { writer.saveDue(); });
    const Conditions& conditions = writer.measured().conditions;
    for (Reading& reading : read) {
        if (conditions.isCalculated) reading.lab = toLab(reading.spectrum, conditions);
        requireFinite(reading);
    }
    return read;
}

/// What speaks against the values of a strip; empty when nothing does.
std::string Session::findDoubt(std::span<const Reading> read, Quantity quantity, const Strip& strip) const {
    const auto count = static_cast<std::size_t>(strip.count);
    if (read.size() < count) {
        return fmt::format("{}: {} of {} patches were found; slide more slowly, from white to white", strip.name,
                           read.size(), count);
    }
    const bool isLabNew = quantity == Quantity::lab || writer.measured().conditions.isCalculated;
    if (writer.measured().reference == nullptr || !isLabNew) return "";
    return findBetterFit(read, strip, strips, writer.measured()).value_or("");
}

/// What to do about a doubt. Without a terminal to ask on, a strip that is only dubious is kept.
/// @return 'r' to measure again, 'k' to keep what was read, 's' to skip the strip
/// @throws Error  when there is nobody to ask about a strip that was not read
char Session::decide(const Attempt& attempt, const Strip& strip) const {
    if (!prompter.canAsk() && attempt.read.size() < static_cast<std::size_t>(strip.count)) throw Error(attempt.doubt);
    prompter.say(attempt.doubt);
    if (!prompter.canAsk()) return 'k';
    std::vector<Choice> choices{{'r', "Measure it again"}};
    if (!attempt.read.empty()) choices.push_back({'k', "keep what was read"});
    choices.push_back({'s', "skip it"});
    return prompter.ask(choices);
}

void Session::keep(Attempt& attempt, Quantity quantity, const Strip& strip) {
    const std::span<Reading> patches = writer.patches(strip);
    const std::size_t found = attempt.read.size();
    std::ranges::copy(attempt.read, patches.begin());
    noteGap(patches.subspan(found), quantity, fmt::format("{} of {} patches were found", found, patches.size()));
    prompter.say(fmt::format("{} read.", titleOf(quantity, strip)));
    writer.save(quantity, strip);
}

void Session::noteGap(std::span<Reading> patches, Quantity quantity, const std::string& reason) const {
    for (Reading& patch : patches) {
        patch.gap = passes.size() > 1 ? fmt::format("{}: {}", nameOf(quantity), reason) : reason;
    }
}

std::string Session::titleOf(Quantity quantity, const Strip& strip) const {
    return fmt::format("{}, {}", strip.name, nameOf(quantity));
}

} // namespace spm

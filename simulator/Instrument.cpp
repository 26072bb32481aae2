#include "simulator/Instrument.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <random>
#include <string_view>

namespace simulator {

namespace {

/// A writable option with its allowed values; without values, it takes a positive number.
struct WritableOption {
    std::string_view key;
    std::array<std::string_view, 2> values;
};

constexpr std::array<WritableOption, 7> writableOptions{{
    {"Colorimetric.Illumination", {"D65"}},
    {"Colorimetric.Observer", {"TenDegree"}},
    {"ColorSpaceDescription.Type", {"CIELab"}},
    {"MeasurementMode", {"ReflectanceSpot", "ReflectanceScan"}},
    {"PatchesPerLine", {}},
    {"PrecisionCalibration", {"0", "1"}},
    {"RecognitionKey", {"RecognitionPositionDark"}},
}};

std::optional<std::int32_t> parseCount(const std::string& text) {
    std::int32_t count = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, count);
    return error == std::errc{} && stop == end && count > 0 ? std::optional(count) : std::nullopt;
}

bool accepts(const WritableOption& option, const std::string& value) {
    if (option.values[0].empty()) return parseCount(value).has_value();
    return !value.empty() && std::ranges::count(option.values, value) > 0;
}

/// An approximately normal deviate with mean 0 and standard deviation 1: the sum of twelve uniform ones (Irwin-Hall).
/// std::normal_distribution gives different numbers in each standard library.
double normalDeviate(std::mt19937_64& engine) {
    double sum = -6;
    for (int i = 0; i < 12; ++i) {
        sum += static_cast<double>(engine() >> 11U) / 0x1p53;
    }
    return sum;
}

} // namespace

Answer Instrument::answer(const Call& call) {
    if (call.function == Function::GetConnectionStatus) return {};
    if (call.function == Function::OpenDevice || call.function == Function::CloseDevice) {
        close();
        session.isOpen = call.function == Function::OpenDevice;
        return {};
    }
    if (!session.isOpen) throw SdkError(SdkError::deviceNotOpen, "The device " + serial + " is not open");
    return answerOpen(call);
}

Answer Instrument::answerOpen(const Call& call) {
    switch (call.function) {
    case Function::SetOption:
        setOption(call.key, call.value);
        return {};
    case Function::GetOption:
        return textAnswer(call, option(call.key));
    case Function::GetButtonStatusD:
        return {.result = isButtonPressed() ? 0 : I1PRO3_BUTTON_NOT_PRESSED};
    case Function::Calibrate:
        session.isCalibrated = true;
        return {};
    case Function::TriggerMeasurement:
        trigger();
        return {};
    case Function::GetNumberOfAvailableSamples:
        return {.result = session.samples}; // a script can make it negative
    default:
        return readSample(call);
    }
}

void Instrument::close() {
    session = {};
    moveOn();
}

void Instrument::setOption(const std::string& key, const std::string& value) {
    const auto* const writable = std::ranges::find(writableOptions, key, &WritableOption::key);
    if (writable == writableOptions.end()) {
        throw SdkError(SdkError::unknownOption, "There is no option \"" + key + "\" to set");
    }
    if (!accepts(*writable, value)) {
        throw SdkError(SdkError::invalidValue, "The option \"" + key + "\" can't be \"" + value + '"');
    }
    session.options[key] = value;
}

std::string Instrument::option(const std::string& key) const {
    if (key == "AvailableIlluminationsKey") return "UVIncluded;UVExcluded";
    if (key == "SerialNumber") return serial;
    const auto found = session.options.find(key);
    if (found == session.options.end())
        throw SdkError(SdkError::unknownOption, "The option \"" + key + "\" is not set");
    return found->second;
}

bool Instrument::isButtonPressed() {
    if (script.button.never || session.isPressUsed) return false;
    const auto now = std::chrono::steady_clock::now();
    if (session.polls == 0) session.firstPoll = now;
    if (session.polls < script.button.polls || now - session.firstPoll < script.button.time) {
        ++session.polls;
        return false;
    }
    session.polls = 0;
    session.isPressUsed = script.button.oncePerMeasurement;
    return true;
}

void Instrument::trigger() {
    if (!session.isCalibrated) throw SdkError(SdkError::notCalibrated, "The device " + serial + " is not calibrated");
    session.samples = option("MeasurementMode") == "ReflectanceScan" ? samplesPerScan() : 1;
    session.wasRead = false;
    ++measurements;
}

/// Moves past the last strip.
void Instrument::moveOn() {
    strip = {.begin = (strip.begin + static_cast<std::size_t>(strip.samples)) % script.chart.size()};
}

/// Called for each sample that is read. The first one of a measurement decides whether it is of the last strip again:
/// if only the other function read that one, and from as many samples.
void Instrument::findStrip(Function reader) {
    if (!session.wasRead) {
        const bool isAgain =
            strip.readers.size() == 1 && !strip.readers.contains(reader) && strip.samples == session.samples;
        if (!isAgain) moveOn();
        strip.samples = session.samples;
        session.wasRead = true;
    }
    strip.readers.insert(reader);
}

std::int32_t Instrument::samplesPerScan() const {
    if (script.samples.count) return *script.samples.count;
    const std::int64_t found = std::int64_t{parseCount(option("PatchesPerLine")).value_or(0)} + script.samples.more;
    return static_cast<std::int32_t>(std::min<std::int64_t>(found, std::numeric_limits<std::int32_t>::max()));
}

Reflectance Instrument::reflectanceOf(std::int32_t sample) const {
    if (!script.isOnWhiteReference) {
        return script.chart[(strip.begin + static_cast<std::size_t>(sample)) % script.chart.size()].reflectance;
    }
    Reflectance tile;
    tile.fill(0.94); // white ceramic
    return tile;
}

Answer Instrument::readSample(const Call& call) {
    if (call.sample < 0 || call.sample >= session.samples) {
        throw SdkError(SdkError::noSample, "There is no sample " + std::to_string(call.sample) +
                                               "; the number of samples is " + std::to_string(session.samples));
    }
    findStrip(call.function);
    std::seed_seq seed{1U, index, measurements, static_cast<std::uint32_t>(call.sample)};
    std::mt19937_64 engine(seed);
    Reflectance measured = reflectanceOf(call.sample);
    for (double& factor : measured) {
        factor += script.noise * normalDeviate(engine);
    }
    if (call.function == Function::GetSpectrum) return {.values = {measured.begin(), measured.end()}};
    const common::Triple lab = cieLab(measured);
    return {.values = {lab.begin(), lab.end()}};
}

} // namespace simulator

#include "simulator/Instrument.h"

#include <algorithm>
#include <array>
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
    return !value.empty() && std::find(option.values.begin(), option.values.end(), value) != option.values.end();
}

/// An approximately normal deviate with mean 0 and standard deviation 1: the sum of twelve uniform ones (Irwin-Hall).
/// std::normal_distribution gives different numbers in each standard library.
double normalDeviate(std::mt19937_64& engine) {
    constexpr double unit = 1.0 / (1ULL << 53U);
    double sum = -6;
    for (int i = 0; i < 12; ++i) {
        sum += static_cast<double>(engine() >> 11U) * unit;
    }
    return sum;
}

std::string quoted(const std::string& text) {
    return '"' + text + '"';
}

} // namespace

void Instrument::requireOpen() const {
    if (!isOpen) throw SdkError(SdkError::Code::deviceNotOpen, "The device " + serial + " is not open");
}

void Instrument::open() {
    close();
    isOpen = true;
}

void Instrument::close() {
    isOpen = false;
    isCalibrated = false;
    options.clear();
    polls = 0;
    moveOn();
    samples = 0;
}

void Instrument::setOption(const std::string& key, const std::string& value) {
    requireOpen();
    const auto* const writable = std::find_if(writableOptions.begin(), writableOptions.end(),
                                              [&](const WritableOption& option) { return option.key == key; });
    if (writable == writableOptions.end()) {
        throw SdkError(SdkError::Code::unknownOption, "There is no option " + quoted(key) + " to set");
    }
    if (!accepts(*writable, value)) {
        throw SdkError(SdkError::Code::invalidValue, "The option " + quoted(key) + " can't be " + quoted(value));
    }
    options[key] = value;
}

std::string Instrument::option(const std::string& key) const {
    requireOpen();
    if (key == "AvailableIlluminationsKey") return "UVIncluded;UVExcluded";
    if (key == "SerialNumber") return serial;
    const auto found = options.find(key);
    if (found == options.end())
        throw SdkError(SdkError::Code::unknownOption, "The option " + quoted(key) + " is not set");
    return found->second;
}

bool Instrument::isButtonPressed() {
    requireOpen();
    if (script.button.never || isPressUsed) return false;
    const auto now = std::chrono::steady_clock::now();
    if (polls == 0) firstPoll = now;
    if (polls < script.button.polls || now - firstPoll < script.button.time) {
        ++polls;
        return false;
    }
    polls = 0;
    isPressUsed = script.button.oncePerMeasurement;
    return true;
}

void Instrument::calibrate() {
    requireOpen();
    isCalibrated = true;
}

void Instrument::trigger() {
    requireOpen();
    if (!isCalibrated) throw SdkError(SdkError::Code::notCalibrated, "The device " + serial + " is not calibrated");
    samples = option("MeasurementMode") == "ReflectanceScan" ? samplesPerScan() : 1;
    wasRead = false;
    ++measurements;
}

/// Moves past the last strip.
void Instrument::moveOn() {
    strip = {.begin = (strip.begin + static_cast<std::size_t>(strip.samples)) % script.chart.size()};
}

/// Called for each sample that is read: the first one decides whether the measurement is of the last strip again.
void Instrument::findStrip(Quantity quantity) {
    const bool isOther = strip.firstQuantity && strip.firstQuantity != quantity;
    if (!wasRead) {
        const bool isAgain = isOther && !strip.isComplete && strip.samples == samples;
        if (!isAgain) moveOn();
        strip.samples = samples;
        wasRead = true;
    }
    if (!strip.firstQuantity) strip.firstQuantity = quantity;
    if (strip.firstQuantity != quantity) strip.isComplete = true;
}

std::int32_t Instrument::samplesPerScan() const {
    if (script.samples.count) return *script.samples.count;
    const std::int64_t requested = parseCount(option("PatchesPerLine")).value_or(0);
    constexpr std::int64_t maximum = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(requested + script.samples.more, maximum));
}

std::int32_t Instrument::numberOfSamples() const {
    requireOpen();
    return samples;
}

Reflectance Instrument::reflectanceOf(std::int32_t sample) const {
    if (!script.isOnWhiteReference) {
        return script.chart[(strip.begin + static_cast<std::size_t>(sample)) % script.chart.size()].reflectance;
    }
    Reflectance tile;
    tile.fill(0.94); // white ceramic
    return tile;
}

Reflectance Instrument::readSample(std::int32_t sample, Quantity quantity) {
    requireOpen();
    if (sample < 0 || sample >= samples) {
        throw SdkError(SdkError::Code::noSample, "There is no sample " + std::to_string(sample) +
                                                     "; the number of samples is " + std::to_string(samples));
    }
    findStrip(quantity);
    std::seed_seq seed{1U, index, measurements, static_cast<std::uint32_t>(sample)};
    std::mt19937_64 engine(seed);
    Reflectance measured = reflectanceOf(sample);
    for (double& factor : measured) {
        factor += script.noise * normalDeviate(engine);
    }
    return measured;
}

} // namespace simulator

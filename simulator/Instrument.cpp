#include "simulator/Instrument.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <random>

namespace simulator {

namespace {

/// Far from what a lamp does, and near enough for numbers to stay numbers.
constexpr double dimmestLamp = 0.01;
constexpr double brightestLamp = 100;

/// An option that can be set, with its values; none for a count.
struct Settable {
    std::string_view key;
    std::array<std::string_view, 2> values;
};

constexpr std::array<Settable, 7> settableOptions{{
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

bool accepts(const Settable& option, const std::string& value) {
    if (option.values[0].empty()) return parseCount(value).has_value();
    return !value.empty() && std::find(option.values.begin(), option.values.end(), value) != option.values.end();
}

/// The factors of a white ceramic tile.
const Reflectance& whiteReference() {
    static const Reflectance tile = [] {
        Reflectance factors;
        factors.fill(0.94);
        return factors;
    }();
    return tile;
}

/// A number of mean 0 and standard deviation 1, nearly normal: the sum of twelve even ones (Irwin-Hall). The standard
/// library's normal distribution differs from one library to the next.
double deviate(std::mt19937_64& engine) {
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

void Instrument::expectOpen() const {
    if (!isOpen) throw SdkError(ErrorCode::deviceNotOpen, "The device " + serial + " is not open");
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
}

void Instrument::setOption(const std::string& key, const std::string& value) {
    expectOpen();
    const auto* const settable = std::find_if(settableOptions.begin(), settableOptions.end(),
                                              [&](const Settable& option) { return option.key == key; });
    if (settable == settableOptions.end()) {
        throw SdkError(ErrorCode::unknownOption, "There is no option " + quoted(key) + " to set");
    }
    if (!accepts(*settable, value)) {
        throw SdkError(ErrorCode::invalidValue, "The option " + quoted(key) + " can't be " + quoted(value));
    }
    options[key] = value;
}

std::string Instrument::option(const std::string& key) const {
    expectOpen();
    if (key == "AvailableIlluminationsKey") return "UVIncluded;UVExcluded";
    if (key == "SerialNumber") return serial;
    const auto found = options.find(key);
    if (found == options.end()) throw SdkError(ErrorCode::unknownOption, "The option " + quoted(key) + " is not set");
    return found->second;
}

bool Instrument::isButtonPressed() {
    expectOpen();
    if (script.button.never || isPressSpent) return false;
    const auto now = std::chrono::steady_clock::now();
    if (polls == 0) firstPoll = now;
    if (polls < script.button.polls || now - firstPoll < script.button.time) {
        ++polls;
        return false;
    }
    polls = 0;
    isPressSpent = script.button.oncePerMeasurement;
    return true;
}

void Instrument::calibrate() {
    expectOpen();
    isCalibrated = true;
    calibratedLamp = lamp;
}

void Instrument::trigger() {
    expectOpen();
    if (!isCalibrated) throw SdkError(ErrorCode::notCalibrated, "The device " + serial + " is not calibrated");
    const std::int32_t found = option("MeasurementMode") == "ReflectanceScan" ? samplesToScan() : 1;
    moveOn();
    samples = found;
    ++measurements;
    light = script.light;
    lamp = std::clamp(lamp * (1 + light.drift), dimmestLamp, brightestLamp);
    gain = lamp / calibratedLamp;
}

/// Leaves the patches of the last measurement behind, if it was read.
void Instrument::moveOn() {
    if (wasRead) position = (position + static_cast<std::size_t>(samples)) % script.chart.size();
    wasRead = false;
    samples = 0;
}

std::int32_t Instrument::samplesToScan() const {
    if (script.samples.count) return *script.samples.count;
    const std::int64_t asked = parseCount(option("PatchesPerLine")).value_or(0);
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(asked + script.samples.more, most));
}

std::int32_t Instrument::numberOfSamples() const {
    expectOpen();
    return samples;
}

const Reflectance& Instrument::surface(std::int32_t sample) const {
    if (script.isOnWhiteReference) return whiteReference();
    return script.chart[(position + static_cast<std::size_t>(sample)) % script.chart.size()].reflectance;
}

Reflectance Instrument::readSample(std::int32_t sample) {
    expectOpen();
    if (sample < 0 || sample >= samples) {
        throw SdkError(ErrorCode::noSample,
                       "There is no sample " + std::to_string(sample) + " of " + std::to_string(samples));
    }
    wasRead = true;
    std::seed_seq seed{static_cast<std::uint32_t>(light.seed), index, measurements, static_cast<std::uint32_t>(sample)};
    std::mt19937_64 engine(seed);
    Reflectance measured = surface(sample);
    for (double& factor : measured) {
        factor = factor * gain + light.noise * deviate(engine);
    }
    return measured;
}

} // namespace simulator

#include "simulator/Instrument.h"

#include <algorithm>
#include <charconv>
#include <random>

namespace simulator {

namespace {

/// The options that can be set, with their values; none for a count.
const std::map<std::string, std::vector<std::string>>& settableOptions() {
    static const std::map<std::string, std::vector<std::string>> options{
        {"Colorimetric.Illumination", {"D65"}},
        {"Colorimetric.Observer", {"TenDegree"}},
        {"ColorSpaceDescription.Type", {"CIELab"}},
        {"MeasurementMode", {"ReflectanceSpot", "ReflectanceScan"}},
        {"PatchesPerLine", {}},
        {"PrecisionCalibration", {"0", "1"}},
        {"RecognitionKey", {"RecognitionPositionDark"}},
    };
    return options;
}

std::optional<std::int32_t> parseCount(const std::string& text) {
    std::int32_t count = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, count);
    return error == std::errc{} && stop == end && count > 0 ? std::optional(count) : std::nullopt;
}

bool accepts(const std::vector<std::string>& values, const std::string& value) {
    if (values.empty()) return parseCount(value).has_value();
    return std::find(values.begin(), values.end(), value) != values.end();
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
    const auto settable = settableOptions().find(key);
    if (settable == settableOptions().end()) {
        throw SdkError(ErrorCode::unknownOption, "There is no option " + quoted(key) + " to set");
    }
    if (!accepts(settable->second, value)) {
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
    isPressSpent = false;
}

void Instrument::trigger() {
    expectOpen();
    if (!isCalibrated) throw SdkError(ErrorCode::notCalibrated, "The device " + serial + " is not calibrated");
    const std::int32_t found = option("MeasurementMode") == "ReflectanceScan" ? samplesToScan() : 1;
    moveOn();
    samples = found;
    ++measurements;
    lamp *= 1 + script.light.drift;
    isPressSpent = false;
}

/// Leaves the patches of the last measurement behind, if it was read.
void Instrument::moveOn() {
    if (wasRead) position = (position + static_cast<std::size_t>(samples)) % script.chart.size();
    wasRead = false;
    samples = 0;
}

std::int32_t Instrument::samplesToScan() const {
    if (script.samples.count) return *script.samples.count;
    return parseCount(option("PatchesPerLine")).value_or(0) + script.samples.more;
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
    std::seed_seq seed{static_cast<std::uint32_t>(script.light.seed), measurements, static_cast<std::uint32_t>(sample)};
    std::mt19937_64 engine(seed);
    Reflectance measured = surface(sample);
    for (double& factor : measured) {
        factor = factor * lamp / calibratedLamp + script.light.noise * deviate(engine);
    }
    return measured;
}

} // namespace simulator

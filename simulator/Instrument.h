#pragma once

#include "simulator/Data.h"

#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>

namespace simulator {

/// What the functions answer when they fail.
enum class ErrorCode : std::int32_t {
    invalidDevice = 1,
    deviceNotOpen = 2,
    unknownOption = 3,
    invalidValue = 4,
    bufferTooSmall = 5,
    invalidArgument = 6,
    noSample = 7,
    notCalibrated = 13,
};

/// A failure of a function, with its text for "LastErrorText".
class SdkError : public std::runtime_error {
public:
    SdkError(ErrorCode errorCode, const std::string& text) : std::runtime_error(text), code(errorCode) {}

    const ErrorCode code;
};

/// What all instruments share.
struct Setup {
    std::vector<Patch> chart = parseChart(colorCheckerCsv);
    Weights weights = parseWeights(d65TenDegreeCsv);
    std::uint32_t buttonPolls = 3;
    std::optional<std::int32_t> samples;
};

/// One simulated instrument. It is moved over the chart in reading order: each measurement that was read takes it on by
/// as many patches as it had, and after the last patch it starts anew.
class Instrument {
public:
    Instrument(std::string number, const Setup& common) : serial(std::move(number)), setup(common) {}

    const std::string& serialNumber() const { return serial; }

    void open();
    void close();
    void setOption(const std::string& key, const std::string& value);
    std::string option(const std::string& key) const;
    bool isButtonPressed();
    void calibrate();
    void trigger();
    /// Of the last measurement; negative when the instrument is not open.
    std::int32_t numberOfSamples() const;
    const Patch& readSample(std::int32_t sample);

private:
    void expectOpen() const;
    void moveOn();
    std::int32_t samplesToScan() const;

    std::string serial;
    const Setup& setup;
    bool isOpen = false;
    bool isCalibrated = false;
    std::map<std::string, std::string> options;
    std::uint32_t polls = 0;
    std::size_t position = 0;
    std::int32_t samples = 0;
    bool wasRead = false;
};

} // namespace simulator

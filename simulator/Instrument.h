#pragma once

#include "simulator/Script.h"

#include <chrono>
#include <map>
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
    unplugged = 8,
    invalidScript = 9,
    notCalibrated = 13,
};

/// A failure of a function, with its text for "LastErrorText".
class SdkError : public std::runtime_error {
public:
    SdkError(ErrorCode errorCode, const std::string& text) : std::runtime_error(text), code(errorCode) {}

    const ErrorCode code;
};

/// One simulated instrument. It is moved over the chart in reading order: each measurement that was read takes it on by
/// as many patches as it had, and after the last patch it starts anew. What it measures is the patch's reflectance
/// times what the lamp has drifted by since the calibration, and some noise, the same whenever the same run is made.
class Instrument {
public:
    Instrument(std::string number, const Script& common) : serial(std::move(number)), script(common) {}

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
    Reflectance readSample(std::int32_t sample);

private:
    void expectOpen() const;
    void moveOn();
    std::int32_t samplesToScan() const;
    const Reflectance& surface(std::int32_t sample) const;

    std::string serial;
    const Script& script;
    bool isOpen = false;
    bool isCalibrated = false;
    std::map<std::string, std::string> options;
    std::uint32_t polls = 0;
    std::chrono::steady_clock::time_point firstPoll;
    bool isPressSpent = false;
    double lamp = 1;
    double calibratedLamp = 1;
    std::uint32_t measurements = 0;
    std::size_t position = 0;
    std::int32_t samples = 0;
    bool wasRead = false;
};

} // namespace simulator

#pragma once

#include "simulator/Chart.h"
#include "simulator/Failure.h"
#include "simulator/Script.h"

#include <chrono>
#include <map>
#include <string>

namespace simulator {

/// One simulated instrument. It is moved over the chart in reading order: each measurement that was read takes it on by
/// as many patches as it had, and after the last patch it starts anew. What it measures is the patch's reflectance
/// times what the lamp has drifted by since the calibration, and some noise, the same whenever the same run is made.
class Instrument {
public:
    /// @param place  which of the instruments this is: each has a noise of its own
    Instrument(std::string number, std::uint32_t place, const Script& common)
        : serial(std::move(number)), index(place), script(common) {}

    const std::string& serialNumber() const { return serial; }

    void open();
    void close();
    void setOption(const std::string& key, const std::string& value);
    std::string option(const std::string& key) const;
    bool isButtonPressed();
    /// Once the button was found pressed, it can be pressed again.
    void releaseButton() { isPressSpent = false; }
    void calibrate();
    void trigger();
    /// Of the last measurement; a script may make it negative.
    std::int32_t numberOfSamples() const;
    Reflectance readSample(std::int32_t sample);

private:
    void expectOpen() const;
    void moveOn();
    std::int32_t samplesToScan() const;
    const Reflectance& surface(std::int32_t sample) const;

    std::string serial;
    std::uint32_t index;
    const Script& script;
    bool isOpen = false;
    bool isCalibrated = false;
    std::map<std::string, std::string> options;
    std::uint32_t polls = 0;
    std::chrono::steady_clock::time_point firstPoll;
    bool isPressSpent = false;
    double lamp = 1;
    double calibratedLamp = 1;
    /// Of the last measurement.
    double gain = 1;
    Light light;
    std::uint32_t measurements = 0;
    std::size_t position = 0;
    std::int32_t samples = 0;
    bool wasRead = false;
};

} // namespace simulator

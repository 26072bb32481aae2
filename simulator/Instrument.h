#pragma once

#include "simulator/Chart.h"
#include "simulator/Failure.h"
#include "simulator/Script.h"

#include <chrono>
#include <map>
#include <string>

namespace simulator {

/// A simulated instrument. It moves over the chart in reading order and starts again after the last patch; a
/// measurement whose samples were never read is repeated on the same patches. A sample is the patch's reflectance,
/// multiplied by the drift of the lamp since the last calibration, plus pseudo-random noise that repeats in every run.
class Instrument {
public:
    /// @param instrumentIndex  makes the noise differ between instruments
    /// @param sharedScript     read at every call; must outlive the instrument
    Instrument(std::string serialNumber, std::uint32_t instrumentIndex, const Script& sharedScript)
        : serial(std::move(serialNumber)), index(instrumentIndex), script(sharedScript) {}

    const std::string& name() const { return serial; }

    // These throw SdkError.

    void open();
    void close();
    void setOption(const std::string& key, const std::string& value);
    std::string option(const std::string& key) const;
    bool isButtonPressed();
    void calibrate();
    void trigger();
    /// The number of samples of the last measurement; a script can make it negative.
    std::int32_t numberOfSamples() const;
    Reflectance readSample(std::int32_t sample);

    /// Allows the next button press; matters only if the script sets "once per measurement".
    void rearmButton() { isPressUsed = false; }

private:
    void requireOpen() const;
    void advance();
    std::int32_t samplesPerScan() const;
    const Reflectance& reflectanceOf(std::int32_t sample) const;

    std::string serial;
    std::uint32_t index;
    const Script& script;
    bool isOpen = false;
    bool isCalibrated = false;
    std::map<std::string, std::string> options;
    /// The polls since the last press, which found the button released.
    std::uint32_t polls = 0;
    std::chrono::steady_clock::time_point firstPoll;
    bool isPressUsed = false;
    /// The lamp's brightness after the last measurement and at the last calibration, relative to the initial one.
    double lamp = 1;
    double calibratedLamp = 1;
    std::uint32_t measurements = 0;
    /// The chart's patch under the first sample of the last measurement.
    std::size_t position = 0;

    // The last measurement.
    /// The drift of the lamp since the last calibration, as a factor.
    double gain = 1;
    Light light;
    std::int32_t samples = 0;
    /// Whether any sample was read.
    bool wasRead = false;
};

} // namespace simulator

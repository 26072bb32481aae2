#pragma once

#include "simulator/Chart.h"
#include "simulator/Script.h"
#include "simulator/SdkError.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace simulator {

/// What a host reads of a sample.
enum class Quantity : std::uint8_t { lab, spectrum };

/// A simulated instrument. It moves over the chart in reading order and starts again after the last patch. A
/// measurement is of the same patches as the one before if that was never read, or if the host reads the patches first
/// in one quantity and then, from as many samples, in the other one. A sample is the patch's reflectance plus
/// pseudo-random noise that repeats in every run.
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
    Reflectance readSample(std::int32_t sample, Quantity quantity);

    /// Allows the next button press; matters only if the script sets "once per measurement".
    void rearmButton() { isPressUsed = false; }

private:
    /// Consecutive patches of the chart that were measured and read, perhaps twice.
    struct Strip {
        std::size_t begin = 0;
        std::int32_t samples = 0;
        std::optional<Quantity> firstQuantity{};
        /// Whether the patches were read in both quantities.
        bool isComplete = false;
    };

    void requireOpen() const;
    void moveOn();
    void findStrip(Quantity quantity);
    std::int32_t samplesPerScan() const;
    Reflectance reflectanceOf(std::int32_t sample) const;

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

    std::uint32_t measurements = 0;
    /// The number of samples of the last measurement, and whether any was read.
    std::int32_t samples = 0;
    bool wasRead = false;
    /// The last one that was read.
    Strip strip;
};

} // namespace simulator

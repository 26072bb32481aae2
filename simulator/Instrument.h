#pragma once

#include "simulator/Call.h"
#include "simulator/Chart.h"
#include "simulator/Script.h"

#include <chrono>
#include <map>
#include <set>
#include <utility>

namespace simulator {

/// A simulated instrument. It moves over the chart in reading order and starts again after the last patch. A sample is
/// the patch's reflectance plus pseudo-random noise that repeats in every run.
class Instrument {
public:
    /// @param instrumentIndex  makes the noise differ between instruments
    /// @param sharedScript     read at every call; must outlive the instrument
    Instrument(std::string serialNumber, std::uint32_t instrumentIndex, const Script& sharedScript)
        : serial(std::move(serialNumber)), index(instrumentIndex), script(sharedScript) {}

    const std::string& name() const { return serial; }

    /// Answers a call of a function with a device.
    /// @throws SdkError
    Answer answer(const Call& call);

    void close();

    /// Allows the next button press; matters only if the script sets "once per measurement".
    void rearmButton() { session.isPressUsed = false; }

private:
    /// Consecutive patches of the chart, and the functions that read them, perhaps from two measurements.
    struct Strip {
        std::size_t begin = 0;
        std::int32_t samples = 0;
        std::set<Function> readers{};
    };

    /// What closing the instrument resets.
    struct Session {
        bool isOpen = false;
        bool isCalibrated = false;
        std::map<std::string, std::string> options{};
        /// The polls since the last press, which found the button released.
        std::uint32_t polls = 0;
        std::chrono::steady_clock::time_point firstPoll{};
        bool isPressUsed = false;
        /// The number of samples of the last measurement, and whether any was read.
        std::int32_t samples = 0;
        bool wasRead = false;
    };

    Answer answerOpen(const Call& call);
    void setOption(const std::string& key, const std::string& value);
    std::string option(const std::string& key) const;
    bool isButtonPressed();
    void trigger();
    void moveOn();
    void findStrip(Function reader);
    std::int32_t samplesPerScan() const;
    Reflectance reflectanceOf(std::int32_t sample) const;
    Answer readSample(const Call& call);

    std::string serial;
    std::uint32_t index;
    const Script& script;
    Session session;
    std::uint32_t measurements = 0;
    /// The last one that was read.
    Strip strip;
};

} // namespace simulator

#pragma once

// The configuration of a simulation, read from a JSON script; docs/simulator.md describes each key.

#include "simulator/Chart.h"
#include "simulator/Fault.h"
#include "simulator/Trace.h"

#include <chrono>
#include <filesystem>
#include <map>

namespace simulator {

/// When polling the button finds it pressed.
struct Button {
    /// The number of polls that find it released, and the time that must have passed since the first of them.
    std::uint32_t polls = 3;
    std::chrono::milliseconds time{0};
    bool never = false;
    /// After a press, the button stays released until the next measurement or calibration.
    bool oncePerMeasurement = false;
};

/// The number of samples that a scan finds: a fixed count, or a number added to what the host requested.
struct Samples {
    std::optional<std::int32_t> count;
    std::int32_t more = 0;
};

struct Script {
    /// The folder that file names in the script are relative to.
    std::filesystem::path folder;
    std::vector<std::string> instruments{"SIM1"};
    std::vector<Patch> chart = parseChart(colorCheckerCsv, "the ColorChecker Classic chart");
    /// What is simulated, for I1PRO3_SimulatorDescription.
    std::string description = "simulated i1Pro 3 with the ColorChecker Classic chart";
    bool isOnWhiteReference = false;
    /// Standard deviation of each reflectance factor.
    double noise = 0.0001;
    Button button;
    Samples samples;
    std::map<Function, std::chrono::milliseconds> latency;
    std::vector<Fault> faults;
    /// The trace to begin; an empty path to end the current one.
    std::optional<std::filesystem::path> trace;
    std::optional<Replay> replay;
};

/// Applies a JSON text to a script. Keys that the text doesn't have keep their values.
/// @param fileName  used in error messages; file names in the text are relative to its folder
/// @throws std::runtime_error  with the file, the value or the line, and the reason; leaves the script unchanged
void applyScript(const std::string& fileName, const std::string& text, Script& script);

/// @throws std::runtime_error  if the script is invalid or can't be read
Script readScript(const std::filesystem::path& file);

} // namespace simulator

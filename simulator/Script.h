#pragma once

// What a simulation is made of, and the JSON text that says it; docs/simulator.md tells of each key.

#include "simulator/Chart.h"
#include "simulator/Faults.h"
#include "simulator/Trace.h"

#include <chrono>
#include <map>

namespace simulator {

/// When the button is found pressed: after so many looks at it and so long after the first of them.
struct Button {
    std::uint32_t polls = 3;
    std::chrono::milliseconds time{0};
    bool never = false;
    /// Once it was found pressed, only the next measurement lets it be pressed again.
    bool oncePerMeasurement = false;
};

struct Light {
    /// Standard deviation of each reflectance factor.
    double noise = 0.0001;
    /// By how much the lamp grows brighter with each measurement; calibrating makes up for what has gathered.
    double drift = 0;
    std::uint64_t seed = 1;
};

/// How many samples a scan finds: so many, or as many as it asks for and some more.
struct Samples {
    std::optional<std::int32_t> count;
    std::int32_t more = 0;
};

/// From this call on, the instruments are gone.
struct Unplug {
    std::optional<Function> function;
    std::uint32_t call = 1;
};

struct Script {
    /// Where the files are that the script names.
    std::filesystem::path folder;
    std::vector<std::string> instruments{"SIM1"};
    std::vector<Patch> chart = parseChart(colorCheckerCsv, "the ColorChecker Classic chart");
    /// What is simulated, to say it.
    std::string subject = "with the ColorChecker Classic chart";
    bool isOnWhiteReference = false;
    Light light;
    Button button;
    Samples samples;
    std::map<Function, std::chrono::milliseconds> latency;
    std::optional<Unplug> unplug;
    std::optional<std::vector<Fault>> faults;
    /// The trace to write; an empty path for none.
    std::optional<std::filesystem::path> trace;
    /// The trace that answers in place of all else.
    std::optional<Recording> replay;
};

/// Applies a JSON text: what it names is set, all else stays as it is.
/// @param fileName  for messages, and to find the files that the text names beside it
/// @throws ScriptError
void applyScript(const std::string& fileName, const std::string& text, Script& script);

/// @throws ScriptError
Script readScript(const std::filesystem::path& file);

/// Says that this is a simulation, and of what.
std::string descriptionOf(const Script& script);

/// All keys, those within others after a dot: "button.polls".
std::vector<std::string> scriptKeys();

} // namespace simulator

// What the recorded sessions of the Trace tests don't cover: the chart, noise, the button and the environment.

#include "common/CsvReader.h"
#include "simulator/Chart.h"
#include "simulator/I1PRO3_Simulator.h"
#include "tests/support/Support.h"
#include "tests/unit/SdkHost.h"

#include <chrono>
#include <cmath>
#include <gtest/gtest.h>
#include <thread>

namespace {

class Simulator : public testing::Test {
protected:
    ~Simulator() override { I1PRO3_SimulatorUse(nullptr); }

    void begin(const std::string& script) {
        beginScript(script);
        host.call("GetDevices");
        host.call("OpenDevice SIM1");
    }

    void prepare(const std::string& mode, const std::string& patches) {
        host.call("Calibrate SIM1");
        EXPECT_EQ(host.call("SetOption SIM1 MeasurementMode " + mode), 0);
        EXPECT_EQ(host.call("SetOption SIM1 PatchesPerLine " + patches), 0);
    }

    /// Reads a sample of the last measurement.
    const std::vector<float>& read(const std::string& function, std::size_t sample = 0) {
        EXPECT_EQ(host.call(function + " SIM1 " + std::to_string(sample)), 0);
        return host.values;
    }

    /// Measures, reads the first sample, and returns the letter of its patch.
    char measure(char quantity) {
        EXPECT_EQ(host.call("TriggerMeasurement SIM1"), 0);
        const float value = read(quantity == 'L' ? "GetTriStimulus" : "GetSpectrum")[0];
        for (std::size_t i = 0; i < chart.size(); ++i) {
            const simulator::Reflectance& factors = chart[i].reflectance;
            if (value == static_cast<float>(quantity == 'L' ? simulator::cieLab(factors)[0] : factors[0]))
                return static_cast<char>('A' + i);
        }
        return '?';
    }

    const std::vector<simulator::Patch> chart = simulator::parseChart(simulator::colorCheckerCsv, "the chart");
    SdkHost host;
};

} // namespace

TEST_F(Simulator, MeasuresTheChartWithSlightNoise) {
    begin("{}");
    prepare("ReflectanceScan", "24");
    EXPECT_EQ(host.call("TriggerMeasurement SIM1"), 0);
    // Calculated from the same factors and weights by an independent program.
    const std::string published = readFile(SOURCE_FOLDER "/tests/unit/data/colorchecker24_lab.csv");
    common::CsvReader csv(published, "colorchecker24_lab.csv");
    csv.next();
    double squares = 0;
    for (std::size_t sample = 0; sample < 24; ++sample) {
        const auto lab = csv.next().value();
        useScript(R"({"light": {"noise": 0}})");
        for (std::size_t k = 0; k < 3; ++k) {
            EXPECT_NEAR(read("GetTriStimulus", sample)[k], std::stod(lab[k + 1]), 0.0006) << lab[0];
        }
        useScript(R"({"light": {"noise": 0.0001}})");
        const std::vector<float>& measured = read("GetSpectrum", sample);
        for (std::size_t i = 0; i < measured.size(); ++i) {
            const double noise = static_cast<double>(measured[i]) - chart[sample].reflectance.at(i);
            squares += noise * noise;
        }
    }
    EXPECT_NEAR(std::sqrt(squares / 24 / 36), 0.0001, 0.00001);
}

TEST_F(Simulator, StaysOnPatchesThatAreReadInTheOtherQuantity) {
    // L and S measure and read CIELab values and spectra, t measures only, c reopens, 2 begins scans of two patches,
    // and x of the whole chart.
    const std::vector<std::pair<std::string, std::string>> cases{
        {"LL", "AB"},  {"LS", "AA"},  {"SL", "AA"},  {"LSL", "AAB"},    {"LSSL", "AABB"},
        {"LtS", "AA"}, {"LcS", "AB"}, {"L2S", "AB"}, {"2LSLS", "AACC"}, {"xLL", "AA"}};
    for (const auto& [steps, patches] : cases) {
        begin(R"({"light": {"noise": 0}})");
        std::string seen;
        prepare("ReflectanceSpot", "1");
        for (const char step : steps) {
            if (step == 'L' || step == 'S') seen += measure(step);
            if (step == 't') host.call("TriggerMeasurement SIM1");
            if (step == '2' || step == 'x') prepare("ReflectanceScan", step == '2' ? "2" : "24");
            if (step == 'c') host.call("OpenDevice SIM1");
            if (step == 'c') prepare("ReflectanceSpot", "1");
        }
        EXPECT_EQ(seen, patches) << steps;
    }
}

TEST_F(Simulator, PressesTheButtonAsScripted) {
    const std::vector<std::array<std::string, 3>> cases{
        {"", "????????", "---P---P"},
        {R"("polls": 2)", "??o???", "----P"},
        {R"("polls": 0, "milliseconds": 50)", "??w??", "--P-"},
        {R"("never": true)", "??????", "------"},
        {R"("polls": 1, "once per measurement": true)", "????m???", "-P---P-"},
    };
    for (const auto& [button, steps, expected] : cases) {
        begin("{\"button\": {" + button + "}}");
        std::string seen;
        for (const char step : steps) {
            if (step == 'w') std::this_thread::sleep_for(std::chrono::milliseconds(60));
            if (step == 'o') host.call("OpenDevice SIM1");
            if (step == 'm') host.call("TriggerMeasurement SIM1");
            if (step == '?') seen += host.call("GetButtonStatusD SIM1") == 1001 ? '-' : 'P';
        }
        EXPECT_EQ(seen, expected) << button;
    }
}

TEST_F(Simulator, FailsEveryCallWithAnInvalidEnvironment) {
    begin("{}");
    const TempFolder folder;
    const std::string file = (folder / "script.json").string();
    const std::string error = file + ": /instruments/1: a simulated serial number must begin with SIM";
    const EnvironmentVariable variable("I1PRO3_SIMULATOR", file);
    writeFile(file, R"({"instruments": ["SIM7", "4711"]})");
    EXPECT_THROW(beginScript("{}"), std::runtime_error);
    EXPECT_EQ(host.call("GetNumberOfAvailableSamples unknown"), -9);
    EXPECT_EQ(host.call("GetGlobalOption null 100"), 9);
    EXPECT_EQ(host.lastError(), error);
    EXPECT_EQ(I1PRO3_SimulatorDescription(), "simulated i1Pro 3, not set up: " + error);
    writeFile(file, R"({"faults": [{"function": "I1PRO3_OpenDevice", "result": -3}]})");
    beginScript("{}");
    EXPECT_EQ(host.call("OpenDevice SIM1"), -3);
}

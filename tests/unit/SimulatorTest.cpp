// What the recorded sessions of the Trace tests don't cover: the chart, noise, the button and the environment.

#include "common/CsvReader.h"
#include "simulator/Chart.h"
#include "simulator/Colour.h"
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
    Simulator() { begin(R"({"light": {"noise": 0}})"); }
    ~Simulator() override { I1PRO3_SimulatorUse(nullptr); }

    void begin(const std::string& script) {
        beginScript(script);
        host.call("GetDevices");
        host.call("OpenDevice SIM1");
    }

    void scanChart() {
        EXPECT_EQ(host.call("SetOption SIM1 MeasurementMode ReflectanceScan"), 0);
        EXPECT_EQ(host.call("SetOption SIM1 PatchesPerLine 24"), 0);
        EXPECT_EQ(host.call("Calibrate SIM1"), 0);
        EXPECT_EQ(host.call("TriggerMeasurement SIM1"), 0);
    }

    /// Reads a sample of the last measurement.
    const std::vector<float>& read(std::size_t sample = 0) {
        EXPECT_EQ(host.call("GetSpectrum SIM1 " + std::to_string(sample)), 0);
        return host.values;
    }

    /// Measures, reads the first sample, and returns the letter of its patch.
    char measure(char quantity) {
        EXPECT_EQ(host.call("TriggerMeasurement SIM1"), 0);
        EXPECT_EQ(host.call(quantity == 'L' ? "GetTriStimulus SIM1 0" : "GetSpectrum SIM1 0"), 0);
        const auto weights = simulator::parseWeights(simulator::d65TenDegreeCsv);
        for (std::size_t i = 0; i < chart.size(); ++i) {
            const double expected =
                quantity == 'L' ? simulator::cieLab(chart[i].reflectance, weights)[0] : chart[i].reflectance[0];
            if (host.values[0] == static_cast<float>(expected)) return static_cast<char>('A' + i);
        }
        return '?';
    }

    const std::vector<simulator::Patch> chart = simulator::parseChart(simulator::colorCheckerCsv, "the chart");
    SdkHost host;
};

} // namespace

TEST_F(Simulator, MeasuresTheChartInOrder) {
    scanChart();
    // Calculated from the same factors and weights by an independent program.
    const std::string published = readFile(SOURCE_FOLDER "/tests/unit/data/colorchecker24_lab.csv");
    common::CsvReader csv(published, "colorchecker24_lab.csv");
    csv.next();
    for (std::size_t i = 0; i < 24; ++i) {
        const simulator::Reflectance& factors = chart.at(i).reflectance;
        EXPECT_EQ(read(i), std::vector<float>(factors.begin(), factors.end()));
        EXPECT_EQ(host.call("GetTriStimulus SIM1 " + std::to_string(i)), 0);
        const auto lab = csv.next().value();
        for (std::size_t k = 0; k < 3; ++k) {
            EXPECT_NEAR(host.values[k], std::stod(lab[k + 1]), 0.0006) << lab[0];
        }
    }
    EXPECT_EQ(host.call("SetOption SIM1 MeasurementMode ReflectanceSpot"), 0);
    for (const float factor : {0.048F, 0.103F}) { // the chart starts over
        EXPECT_EQ(host.call("TriggerMeasurement SIM1"), 0);
        EXPECT_EQ(host.call("TriggerMeasurement SIM1"), 0) << "a sample that was not read is measured again";
        EXPECT_FLOAT_EQ(read()[0], factor);
    }
}

TEST_F(Simulator, StaysOnPatchesThatAreReadInTheOtherQuantity) {
    // L and S measure and read CIELab values and spectra, t measures only, c reopens, 2 begins scans of two patches.
    const std::vector<std::pair<std::string, std::string>> cases{{"LL", "AB"},   {"LS", "AA"},     {"SL", "AA"},
                                                                 {"LSL", "AAB"}, {"LSSL", "AABB"}, {"LtS", "AA"},
                                                                 {"LcS", "AB"},  {"L2S", "AB"},    {"2LSLS", "AACC"}};
    for (const auto& [steps, patches] : cases) {
        begin(R"({"light": {"noise": 0}})");
        std::string seen;
        const auto prepare = [&](const std::string& mode) {
            host.call("Calibrate SIM1");
            EXPECT_EQ(host.call("SetOption SIM1 MeasurementMode " + mode), 0);
        };
        prepare("ReflectanceSpot");
        for (const char step : steps) {
            if (step == 'L' || step == 'S') seen += measure(step);
            if (step == 't') host.call("TriggerMeasurement SIM1");
            if (step == '2') prepare("ReflectanceScan");
            if (step == '2') host.call("SetOption SIM1 PatchesPerLine 2");
            if (step == 'c') host.call("OpenDevice SIM1");
            if (step == 'c') prepare("ReflectanceSpot");
        }
        EXPECT_EQ(seen, patches) << steps;
    }
}

TEST_F(Simulator, CanBePluggedInAgain) {
    begin(R"({"faults": [{"function": "I1PRO3_Calibrate", "unplug": true},
                         {"function": "I1PRO3_GetDevices", "call": 3, "unplug": false}]})");
    EXPECT_EQ(host.call("Calibrate SIM1"), 8);
    EXPECT_EQ(host.call("GetDevices"), 0);
    EXPECT_EQ(host.call("OpenDevice SIM1"), 8);
    EXPECT_EQ(host.call("GetDevices"), 0);
    EXPECT_EQ(host.call("Calibrate SIM1"), 2) << "it is not open";
    EXPECT_EQ(host.call("OpenDevice SIM1"), 0);
    EXPECT_EQ(host.call("Calibrate SIM1"), 0);
}

TEST_F(Simulator, AddsSlightNoise) {
    begin("{}");
    scanChart();
    double sum = 0;
    double squares = 0;
    for (std::size_t sample = 0; sample < 24; ++sample) {
        const std::vector<float> measured = read(sample);
        for (std::size_t i = 0; i < measured.size(); ++i) {
            const double noise = static_cast<double>(measured[i]) - chart[sample].reflectance.at(i);
            sum += noise;
            squares += noise * noise;
        }
    }
    EXPECT_NEAR(sum / 24 / 36, 0, 0.00001);
    EXPECT_NEAR(std::sqrt(squares / 24 / 36), 0.0001, 0.00001);
}

TEST_F(Simulator, PressesTheButtonAsScripted) {
    struct Case {
        std::string button;
        std::string steps;
        std::string seen;
    };
    const std::vector<Case> cases{
        {"", "????????", "---P---P"},
        {R"("polls": 0)", "???", "PPP"},
        {R"("polls": 2)", "??o???", "----P"},
        {R"("polls": 0, "milliseconds": 50)", "??w??", "--P-"},
        {R"("never": true)", "??????", "------"},
    };
    for (const Case& each : cases) {
        begin("{\"button\": {" + each.button + "}}");
        std::string seen;
        for (const char step : each.steps) {
            if (step == 'w') std::this_thread::sleep_for(std::chrono::milliseconds(60));
            if (step == 'o') host.call("OpenDevice SIM1");
            if (step == '?') seen += host.call("GetButtonStatusD SIM1") == 1001 ? '-' : 'P';
        }
        EXPECT_EQ(seen, each.seen) << each.button;
    }
}

TEST_F(Simulator, FailsEveryCallWithAnInvalidEnvironment) {
    const TempFolder folder;
    const std::string file = (folder / "script.json").string();
    const std::string error = file + ": /instruments/1: a simulated serial number must begin with SIM";
    const EnvironmentVariable variable("I1PRO3_SIMULATOR", file);
    writeFile(file, R"({"instruments": ["SIM7", "4711"]})");
    EXPECT_THROW(beginScript("{}"), std::runtime_error);
    EXPECT_EQ(host.call("GetNumberOfAvailableSamples unknown"), -9);
    EXPECT_EQ(host.call("GetGlobalOption null 100"), 9);
    EXPECT_EQ(host.call("GetGlobalOption LastErrorNumber 100"), 0);
    EXPECT_EQ(host.text, "9");
    EXPECT_EQ(host.lastError(), error);
    EXPECT_EQ(I1PRO3_SimulatorDescription(), "simulated i1Pro 3, not set up: " + error);
    writeFile(file, R"({"faults": [{"function": "I1PRO3_OpenDevice", "result": -3}]})");
    beginScript("{}");
    EXPECT_EQ(host.call("OpenDevice SIM1"), -3);
}

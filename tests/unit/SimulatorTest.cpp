#include "i1pro3/I1PRO3_SDK.h"
#include "simulator/Colour.h"
#include "simulator/Control.h"
#include "tests/support/Support.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <thread>

namespace {

class SimulatedSdk : public testing::Test {
protected:
    SimulatedSdk() {
        control.reset();
        control.use(R"({"light": {"noise": 0}})");
        device = firstDevice();
    }
    ~SimulatedSdk() override { control.reset(); }

    static I1PRO3_DeviceHandle firstDevice() {
        uint32_t count = 0;
        I1PRO3_DeviceHandle* list = nullptr;
        EXPECT_EQ(I1PRO3_GetDevices(&list, &count), 0);
        return count > 0 ? list[0] : nullptr;
    }

    void openAndCalibrate() {
        ASSERT_EQ(I1PRO3_OpenDevice(device), 0);
        ASSERT_EQ(I1PRO3_SetOption(device, "MeasurementMode", "ReflectanceScan"), 0);
        ASSERT_EQ(I1PRO3_SetOption(device, "PatchesPerLine", "24"), 0);
        ASSERT_EQ(I1PRO3_Calibrate(device), 0);
    }

    static std::string global(const char* key) {
        std::array<char, 200> buffer{};
        uint32_t size = buffer.size();
        EXPECT_EQ(I1PRO3_GetGlobalOption(key, buffer.data(), &size), 0);
        EXPECT_EQ(size, buffer.size());
        return buffer.data();
    }

    simulator::Control& control = *I1PRO3_SimulatorControl();
    I1PRO3_DeviceHandle device = nullptr;
};

} // namespace

TEST_F(SimulatedSdk, SpectraAndLabAreOfOneMeasurement) {
    const simulator::Weights weights = simulator::parseWeights(simulator::d65TenDegreeCsv);
    openAndCalibrate();
    ASSERT_EQ(I1PRO3_TriggerMeasurement(device), 0);
    ASSERT_EQ(I1PRO3_GetNumberOfAvailableSamples(device), 24);
    const std::vector<simulator::Patch> chart = simulator::parseChart(simulator::colorCheckerCsv);
    ASSERT_EQ(chart.size(), 24U);
    for (int sample = 0; sample < 24; ++sample) {
        std::array<float, 36> spectrum{};
        std::array<float, 3> lab{};
        ASSERT_EQ(I1PRO3_GetSpectrum(device, spectrum.data(), sample), 0);
        ASSERT_EQ(I1PRO3_GetTriStimulus(device, lab.data(), sample), 0);
        simulator::Reflectance reflectance{};
        std::copy(spectrum.begin(), spectrum.end(), reflectance.begin());
        const simulator::Lab expected = cieLab(reflectance, weights);
        EXPECT_NEAR(static_cast<double>(lab[0]), expected.L, 1e-4);
        EXPECT_NEAR(static_cast<double>(lab[1]), expected.a, 1e-4);
        EXPECT_NEAR(static_cast<double>(lab[2]), expected.b, 1e-4);
        simulator::Reflectance patch = chart[static_cast<std::size_t>(sample)].reflectance;
        EXPECT_TRUE(std::equal(spectrum.begin(), spectrum.end(), patch.begin(), [](float read, double factor) {
            return read == static_cast<float>(factor);
        })) << sample;
    }
    std::array<float, 36> beyond{};
    EXPECT_NE(I1PRO3_GetSpectrum(device, beyond.data(), 24), 0);
    EXPECT_EQ(global("LastErrorText"), "There is no sample 24 of 24");
    EXPECT_NE(I1PRO3_GetSpectrum(device, beyond.data(), -1), 0);
}

TEST_F(SimulatedSdk, WantsOpeningCalibratingAndKnownOptions) {
    EXPECT_EQ(I1PRO3_SetOption(device, "MeasurementMode", "ReflectanceSpot"), 2);
    EXPECT_EQ(global("LastErrorText"), "The device SIM1 is not open");
    EXPECT_EQ(I1PRO3_OpenDevice(&control), 1);
    EXPECT_EQ(I1PRO3_OpenDevice(device), 0);
    EXPECT_EQ(I1PRO3_SetOption(device, "Colour", "red"), 3);
    EXPECT_EQ(global("LastErrorText"), "There is no option \"Colour\" to set");
    EXPECT_EQ(I1PRO3_SetOption(device, "PatchesPerLine", "many"), 4);
    std::array<char, 5> small{};
    uint32_t size = small.size();
    EXPECT_EQ(I1PRO3_GetGlobalOption("LastErrorText", small.data(), &size), 5);
    EXPECT_EQ(size, std::string("The option \"PatchesPerLine\" can't be \"many\"").size() + 1);
    EXPECT_EQ(global("LastErrorNumber"), "4") << "asking does not change what is asked for";
    EXPECT_EQ(I1PRO3_TriggerMeasurement(device), 13);
    EXPECT_EQ(global("LastErrorNumber"), "13");
    EXPECT_EQ(I1PRO3_SetOption(device, "MeasurementMode", "ReflectanceSpot"), 0);
    EXPECT_EQ(I1PRO3_CloseDevice(device), 0);
    EXPECT_EQ(I1PRO3_CloseDevice(device), 0);
    EXPECT_EQ(I1PRO3_OpenDevice(device), 0);
    EXPECT_EQ(I1PRO3_GetOption(device, "MeasurementMode", small.data(), &size), 3) << "options end with the connection";
    EXPECT_EQ(I1PRO3_TriggerMeasurement(device), 13) << "so does a calibration";
    EXPECT_EQ(I1PRO3_SetGlobalOption("Reset", "All"), 0);
    EXPECT_EQ(global("LastErrorText"), "");
}

TEST_F(SimulatedSdk, MovesOnWhenAMeasurementWasRead) {
    openAndCalibrate();
    ASSERT_EQ(I1PRO3_SetOption(device, "MeasurementMode", "ReflectanceSpot"), 0);
    const auto firstFactor = [&] {
        std::array<float, 36> spectrum{};
        EXPECT_EQ(I1PRO3_TriggerMeasurement(device), 0);
        EXPECT_EQ(I1PRO3_TriggerMeasurement(device), 0);
        EXPECT_EQ(I1PRO3_GetSpectrum(device, spectrum.data(), 0), 0);
        return spectrum[0];
    };
    EXPECT_FLOAT_EQ(firstFactor(), 0.048F);
    EXPECT_FLOAT_EQ(firstFactor(), 0.103F);
    openAndCalibrate();
    ASSERT_EQ(I1PRO3_SetOption(device, "MeasurementMode", "ReflectanceSpot"), 0);
    EXPECT_FLOAT_EQ(firstFactor(), 0.113F) << "also across connections";
}

TEST_F(SimulatedSdk, NoiseIsSlightAndTheSameInEachRun) {
    const auto measure = [&](int times, const std::string& script = "{}") {
        control.reset();
        control.use(script);
        device = firstDevice();
        openAndCalibrate();
        for (int i = 0; i < times; ++i) {
            EXPECT_EQ(I1PRO3_TriggerMeasurement(device), 0);
        }
        std::vector<float> factors(24UL * 36);
        for (int sample = 0; sample < 24; ++sample) {
            EXPECT_EQ(I1PRO3_GetSpectrum(device, &factors[36UL * static_cast<std::size_t>(sample)], sample), 0);
        }
        return factors;
    };
    const std::vector<float> first = measure(1);
    EXPECT_EQ(measure(1), first);
    const std::vector<float> second = measure(2);
    double sum = 0;
    double squares = 0;
    for (std::size_t i = 0; i < first.size(); ++i) {
        const double difference = static_cast<double>(second[i]) - static_cast<double>(first[i]);
        sum += difference;
        squares += difference * difference;
    }
    const auto count = static_cast<double>(first.size());
    EXPECT_NEAR(sum / count, 0, 0.00002);
    EXPECT_NEAR(std::sqrt(squares / count), 0.0001 * std::sqrt(2), 0.00001) << "of two measurements";
    EXPECT_NE(measure(2, R"({"light": {"seed": 2}})"), second);
}

TEST_F(SimulatedSdk, TheLampDriftsUntilItIsCalibrated) {
    control.use(R"({"place": "white reference", "light": {"drift": 0.01}})");
    openAndCalibrate();
    const auto measure = [&] {
        std::array<float, 36> spectrum{};
        EXPECT_EQ(I1PRO3_TriggerMeasurement(device), 0);
        EXPECT_EQ(I1PRO3_GetSpectrum(device, spectrum.data(), 0), 0);
        return spectrum[17];
    };
    EXPECT_FLOAT_EQ(measure(), 0.94F * 1.01F);
    EXPECT_FLOAT_EQ(measure(), 0.94F * 1.01F * 1.01F);
    EXPECT_EQ(I1PRO3_Calibrate(device), 0);
    control.use(R"({"light": {"drift": 0}})");
    EXPECT_FLOAT_EQ(measure(), 0.94F);
}

TEST_F(SimulatedSdk, TheButtonIsPressedAsTheScriptSays) {
    const auto presses = [&](const std::string& script, const std::string& steps) {
        control.reset();
        control.use(script);
        device = firstDevice();
        openAndCalibrate();
        std::string seen;
        for (const char step : steps) {
            if (step == 'f') control.answer({.function = "I1PRO3_TriggerMeasurement", .result = 1});
            if (step == 'm' || step == 'f') I1PRO3_TriggerMeasurement(device);
            if (step == 'c') I1PRO3_Calibrate(device);
            if (step == 'o') I1PRO3_OpenDevice(device);
            if (step == 'w') std::this_thread::sleep_for(std::chrono::milliseconds(60));
            if (step == '?') seen += I1PRO3_GetButtonStatusD(device) == 1001 ? '-' : 'P';
        }
        return seen;
    };
    EXPECT_EQ(presses("{}", "????????"), "---P---P");
    EXPECT_EQ(presses(R"({"button": {"polls": 0}})", "???"), "PPP");
    const std::string once = R"({"button": {"polls": 1, "once per measurement": true}})";
    EXPECT_EQ(presses(once, "????m????"), "-P---P--");
    EXPECT_EQ(presses(once, "???c??"), "-P--P") << "calibrating is a measurement, too";
    EXPECT_EQ(presses(once, "???o????"), "-P--P--") << "the button is another one for who opens again";
    EXPECT_EQ(presses(once, "???f????"), "-P--P--") << "a measurement that failed, too";
    EXPECT_EQ(presses(R"({"button": {"polls": 2}})", "??o????"), "----P-") << "looking begins anew";
    EXPECT_EQ(presses(R"({"button": {"polls": 0, "milliseconds": 50}})", "??w??"), "--P-");
    EXPECT_EQ(presses(R"({"button": {"never": true}})", "??????"), "------");
}

TEST_F(SimulatedSdk, AScanFindsWhatTheScriptSays) {
    const auto samples = [&](const std::string& script) {
        control.use(script);
        openAndCalibrate();
        EXPECT_EQ(I1PRO3_TriggerMeasurement(device), 0);
        return I1PRO3_GetNumberOfAvailableSamples(device);
    };
    EXPECT_EQ(samples("{}"), 24);
    EXPECT_EQ(samples(R"({"samples": {"more": -4}})"), 20);
    EXPECT_EQ(samples(R"({"samples": {"more": 4}})"), 28);
    EXPECT_EQ(samples(R"({"samples": {"more": 2147483647}})"), 2147483647);
    EXPECT_EQ(samples(R"({"samples": {"count": 0}})"), 0);
    EXPECT_EQ(samples(R"({"samples": {"count": -1}})"), -1);
    EXPECT_EQ(samples(R"({"samples": {}})"), 24);
}

TEST_F(SimulatedSdk, AnUnpluggedInstrumentIsGone) {
    control.use(R"({"unplug": {"function": "I1PRO3_Calibrate", "call": 2}})");
    openAndCalibrate();
    EXPECT_EQ(I1PRO3_Calibrate(device), 8);
    EXPECT_EQ(global("LastErrorText"), "The device SIM1 was unplugged");
    EXPECT_EQ(I1PRO3_OpenDevice(device), 8);
    EXPECT_EQ(firstDevice(), nullptr);
}

TEST_F(SimulatedSdk, CallsTakeTheirTime) {
    control.use(R"({"latency": {"I1PRO3_OpenDevice": 80}})");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(I1PRO3_OpenDevice(device), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(80));
}

TEST_F(SimulatedSdk, AWrongScriptOfTheEnvironmentIsTheOnlyAnswer) {
    const TempFolder folder;
    const std::string file = (folder / "script.json").string();
    const EnvironmentVariable variable("I1PRO3_SIMULATOR", file);
    I1PRO3_DeviceHandle* list = nullptr;
    uint32_t count = 7;
    control.reset();
    EXPECT_EQ(I1PRO3_GetDevices(&list, &count), 9);
    EXPECT_EQ(global("LastErrorText"), file + ": the file can't be read: No such file or directory");
    writeFile(file, "{\n\"instruments\": [\"SIM7\",\n\"4711\"]}");
    control.reset();
    EXPECT_EQ(I1PRO3_GetDevices(&list, &count), 9);
    EXPECT_EQ(global("LastErrorText"), file + ", line 3: \"4711\" does not begin with SIM, for simulated");
    EXPECT_EQ(I1PRO3_OpenDevice(device), 9);
    EXPECT_EQ(count, 7U);
    writeFile(file, R"({"instruments": ["SIM7"], "faults": [{"function": "I1PRO3_OpenDevice", "result": -3}]})");
    control.reset();
    device = firstDevice();
    EXPECT_EQ(I1PRO3_OpenDevice(device), -3);
    EXPECT_EQ(control.calls().back().arguments, std::vector<std::string>{"SIM7"});
}

TEST_F(SimulatedSdk, GivesScriptedAnswersByPosition) {
    control.answer({.function = "I1PRO3_OpenDevice", .position = 2, .times = 2, .result = -5, .errorText = "%s"});
    EXPECT_EQ(I1PRO3_OpenDevice(device), 0);
    EXPECT_EQ(I1PRO3_OpenDevice(device), -5);
    EXPECT_EQ(I1PRO3_OpenDevice(device), -5);
    EXPECT_EQ(global("LastErrorText"), "%s");
    EXPECT_EQ(global("LastErrorNumber"), "-5");
    EXPECT_EQ(I1PRO3_OpenDevice(device), 0);
}

TEST_F(SimulatedSdk, CountsACallForEachAnswer) {
    control.use(R"({"faults": [{"function": "I1PRO3_OpenDevice", "call": 1, "result": -1},
                               {"function": "I1PRO3_OpenDevice", "call": 2, "result": -2},
                               {"function": "I1PRO3_OpenDevice", "call": 2, "result": -3, "times": "always"}]})");
    std::vector<int> results(4);
    std::generate(results.begin(), results.end(), [&] { return I1PRO3_OpenDevice(device); });
    EXPECT_EQ(results, (std::vector<int>{-1, -2, -3, -3}));
}

TEST_F(SimulatedSdk, MeasuresAtTheTrigger) {
    control.use(R"({"place": "white reference", "light": {"drift": 0.1}})");
    openAndCalibrate();
    std::array<float, 36> before{};
    std::array<float, 36> after{};
    EXPECT_EQ(I1PRO3_TriggerMeasurement(device), 0);
    EXPECT_EQ(I1PRO3_GetSpectrum(device, before.data(), 0), 0);
    EXPECT_EQ(I1PRO3_Calibrate(device), 0);
    control.use(R"({"light": {"noise": 0.1}})");
    EXPECT_EQ(I1PRO3_GetSpectrum(device, after.data(), 0), 0);
    EXPECT_EQ(before, after);
}

TEST_F(SimulatedSdk, EachInstrumentHasItsOwnNoise) {
    control.use(R"({"place": "white reference", "light": {"noise": 0.0001}, "instruments": ["SIM2", "SIM3"]})");
    I1PRO3_DeviceHandle* list = nullptr;
    uint32_t count = 0;
    ASSERT_EQ(I1PRO3_GetDevices(&list, &count), 0);
    ASSERT_EQ(count, 2U);
    std::array<std::array<float, 36>, 2> spectra{};
    for (std::size_t i = 0; i < 2; ++i) {
        device = list[i];
        openAndCalibrate();
        EXPECT_EQ(I1PRO3_TriggerMeasurement(device), 0);
        EXPECT_EQ(I1PRO3_GetSpectrum(device, spectra.at(i).data(), 0), 0);
    }
    EXPECT_NE(spectra[0], spectra[1]);
}

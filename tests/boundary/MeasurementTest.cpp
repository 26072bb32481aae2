#include "tests/boundary/ModuleTest.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::size_t room = 24;
constexpr float untouched = -1;

/// What a read left behind.
struct Reading {
    bool answer;
    int32_t count;
    std::size_t filled;

    bool operator==(const Reading&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Reading& reading) {
    return stream << reading.answer << ", count " << reading.count << ", filled " << reading.filled;
}

class Measurement : public ModuleTest {
protected:
    Measurement() {
        values.fill({untouched, untouched, untouched});
        for (std::size_t i = 0; i < room; ++i) {
            reflections[i].fill({-1, untouched});
            spectra[i] = {36, reflections[i].data()};
        }
    }

    Reading read(int32_t patches) {
        int32_t count = patches;
        const bool answer = module.read(handle, values.data(), &count);
        return {answer, count, static_cast<std::size_t>(std::count_if(values.begin(), values.end(), [](SPM_LAB lab) {
                    return lab.L != untouched;
                }))};
    }

    Reading readSpectrum(int32_t patches) {
        int32_t count = patches;
        const bool answer = module.readSpectrum(handle, spectra.data(), &count);
        return {answer, count,
                static_cast<std::size_t>(std::count_if(reflections.begin(), reflections.end(),
                                                       [](const auto& s) { return s[0].wavelength > 0; }))};
    }

    std::array<SPM_LAB, room> values{};
    std::array<std::array<SPM_REFLECTION, 40>, room> reflections{};
    std::array<SPM_SPECTRUM, room> spectra{};
};

Texts scanCalls(int patches, const std::string& readout, int samples) {
    Texts calls{"GetConnectionStatus SIM1",
                "SetOption SIM1 RecognitionKey RecognitionPositionDark",
                "SetOption SIM1 PatchesPerLine " + std::to_string(patches),
                "SetOption SIM1 MeasurementMode ReflectanceScan",
                "GetButtonStatusD SIM1",
                "TriggerMeasurement SIM1",
                "GetNumberOfAvailableSamples SIM1"};
    for (int sample = 0; sample < samples; ++sample) {
        calls.push_back(readout + " SIM1 " + std::to_string(sample));
    }
    return calls;
}

} // namespace

TEST_F(Measurement, MeasuresNothingWithoutFailing) {
    EXPECT_EQ(read(24), (Reading{true, 0, 0})) << "not open";
    EXPECT_EQ(readSpectrum(24), (Reading{true, 0, 0})) << "not open";
    EXPECT_TRUE(takeCalls().empty());
    prepare();
    for (const int32_t patches : {0, -1, INT32_MIN}) {
        EXPECT_EQ(read(patches), (Reading{true, 0, 0})) << patches;
        EXPECT_EQ(readSpectrum(patches), (Reading{true, 0, 0})) << patches;
        EXPECT_EQ(takeCalls(), (Texts{"GetConnectionStatus SIM1", "GetConnectionStatus SIM1"}));
    }
    for (const int32_t entries : {35, 37, 0, -36}) {
        spectra[0].numberOfReflections = entries;
        EXPECT_EQ(readSpectrum(24), (Reading{true, 0, 0})) << entries;
        EXPECT_EQ(takeCalls(), Texts{"GetConnectionStatus SIM1"});
    }
    spectra[0].numberOfReflections = 36;
    sdk.use(R"({"samples": {"count": 0}})");
    EXPECT_EQ(read(24), (Reading{true, 0, 0})) << "no patch found";
    EXPECT_EQ(readSpectrum(24), (Reading{true, 0, 0})) << "no patch found";
    EXPECT_EQ(takeCalls().size(), 2 * scanCalls(24, "", 0).size());
    sdk.use(R"({"button": {"polls": 1000}})");
    EXPECT_EQ(read(24), (Reading{true, 0, 0})) << "button not pressed";
    EXPECT_EQ(takeCalls(), [] {
        Texts calls = scanCalls(24, "", 0);
        calls.resize(5);
        return calls;
    }());
    EXPECT_EQ(readSpectrum(1), (Reading{true, 0, 0})) << "button not pressed";
    EXPECT_EQ(takeCalls(), (Texts{"GetConnectionStatus SIM1", "SetOption SIM1 MeasurementMode ReflectanceSpot",
                                  "GetButtonStatusD SIM1"}));
    EXPECT_TRUE(listener.lines.empty());
}

TEST_F(Measurement, TakesTheSamplesThatTheScanFound) {
    prepare();
    sdk.use(R"({"samples": {"count": 20}})");
    EXPECT_EQ(read(24), (Reading{true, 20, 20}));
    EXPECT_EQ(readSpectrum(24), (Reading{true, 20, 20}));
    EXPECT_EQ(values[20].L, untouched);
    sdk.use(R"({"samples": {"count": 1}})");
    takeCalls();
    EXPECT_EQ(read(INT32_MAX).count, 1);
    EXPECT_EQ(takeCalls(), scanCalls(INT32_MAX, "GetTriStimulus", 1));
    const Texts error{"M7 E1539: invalid number of samples"};
    values.fill({untouched, untouched, untouched});
    for (const int32_t samples : {25, -1, INT32_MIN, INT32_MAX}) {
        listener.lines.clear();
        sdk.answer({.function = "I1PRO3_GetNumberOfAvailableSamples", .result = samples});
        EXPECT_EQ(read(24), (Reading{false, 0, 0})) << samples;
        EXPECT_EQ(takeCalls(), scanCalls(24, "", 0));
        EXPECT_EQ(listener.lines, error);
        EXPECT_EQ(log().back(), error[0]);
    }
}

TEST_F(Measurement, KeepsWhatWasReadBeforeAFailure) {
    prepare();
    sdk.answer({.function = "I1PRO3_GetTriStimulus", .argument = "5", .result = 9, .errorText = "lamp"});
    sdk.answer({.function = "I1PRO3_GetSpectrum", .argument = "7", .result = 9, .errorText = "lamp"});
    EXPECT_EQ(read(20), (Reading{false, 5, 5}));
    EXPECT_EQ(readSpectrum(20), (Reading{false, 7, 7}));
    EXPECT_EQ(listener.lines, Texts(2, "M7 E1539: lamp\nErrorNumber: 9"));
    sdk.answer({.function = "I1PRO3_TriggerMeasurement", .throws = true});
    EXPECT_EQ(read(20).answer, false) << "what is no error of the module's is contained, but not logged";
    EXPECT_EQ(listener.lines.size(), 2U);
    EXPECT_EQ(read(20), (Reading{true, 20, 20}));
}

TEST_F(Measurement, DeliversLabAsItIsAndSpectraInPercent) {
    sdk.use(R"({"light": {"noise": 0}})");
    prepare();
    ASSERT_EQ(readSpectrum(24), (Reading{true, 24, 24}));
    EXPECT_EQ(reflections[0][0].wavelength, 380);
    EXPECT_EQ(reflections[0][35].wavelength, 730);
    EXPECT_EQ(reflections[0][0].value, 0.048F * 100.0F); // dark skin
    EXPECT_EQ(reflections[0][35].value, 0.372F * 100.0F);
    EXPECT_EQ(reflections[0][36].wavelength, -1);
    EXPECT_EQ(reflections[23][35].wavelength, 730);
    ASSERT_EQ(read(24), (Reading{true, 24, 24}));
    // L*, a*, b* of the white and the red patch, computed independently from the data with the formulae of CIE 15.
    EXPECT_NEAR(values[18].L, 95.45F, 0.005F);
    EXPECT_NEAR(values[18].a, -0.49F, 0.005F);
    EXPECT_NEAR(values[18].b, 1.03F, 0.005F);
    EXPECT_NEAR(values[14].a, 48.54F, 0.005F);
}

TEST_F(Measurement, FillsLaterRecordsAsFarAsTheyGo) {
    prepare();
    spectra[1].numberOfReflections = 10;
    spectra[2].numberOfReflections = 0;
    spectra[3] = {-5, nullptr};
    spectra[4].numberOfReflections = 40;
    EXPECT_EQ(readSpectrum(6).count, 6);
    const auto entries = [&](std::size_t record) {
        return std::count_if(reflections[record].begin(), reflections[record].end(),
                             [](SPM_REFLECTION reflection) { return reflection.wavelength > 0; });
    };
    EXPECT_EQ((std::array{entries(0), entries(1), entries(2), entries(3), entries(4), entries(5)}),
              (std::array<std::ptrdiff_t, 6>{36, 10, 0, 0, 36, 36}));
    EXPECT_EQ(reflections[1][9].wavelength, 470);
    EXPECT_EQ(spectra[1].numberOfReflections, 10);

    spectra[3] = {36, nullptr};
    EXPECT_EQ(readSpectrum(6).answer, false);
    EXPECT_EQ(listener.lines, Texts{"M7 E1539: a spectrum record has no array of reflections"});
}

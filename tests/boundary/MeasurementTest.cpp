#include "tests/boundary/ModuleTest.h"

#include <array>

namespace {

constexpr std::size_t maxPatches = 24;
/// The result of a read: its return value and the count.
using Reading = std::pair<bool, int32_t>;

class Measurement : public ModuleTest {
protected:
    Measurement() {
        for (std::size_t i = 0; i < maxPatches; ++i) {
            spectra[i] = {36, reflections[i].data()};
        }
    }

    Reading read(int32_t count) {
        const bool answer = module.read(handle, values.data(), &count);
        return {answer, count};
    }

    Reading readSpectrum(int32_t count) {
        const bool answer = module.readSpectrum(handle, spectra.data(), &count);
        return {answer, count};
    }

    std::array<SPM_LAB, maxPatches> values{};
    std::array<std::array<SPM_REFLECTION, 40>, maxPatches> reflections{};
    std::array<SPM_SPECTRUM, maxPatches> spectra{};
};

} // namespace

TEST_F(Measurement, SucceedsWithoutMeasuring) {
    const Reading none{true, 0};
    const auto expectNothing = [&](int32_t patches, const std::string& lastCall) {
        EXPECT_EQ(read(patches), none) << patches;
        EXPECT_EQ(sdk.takeCalls().back(), lastCall);
        EXPECT_EQ(readSpectrum(patches), none) << patches;
        EXPECT_EQ(sdk.takeCalls().back(), lastCall);
    };
    EXPECT_EQ(read(24), none) << "not open";
    EXPECT_EQ(readSpectrum(24), none) << "not open";
    EXPECT_TRUE(sdk.takeCalls().empty());
    openAndCalibrate();
    expectNothing(0, "GetConnectionStatus SIM1");
    expectNothing(INT32_MIN, "GetConnectionStatus SIM1");
    for (const int32_t entries : {35, 37}) {
        spectra[0].numberOfReflections = entries;
        EXPECT_EQ(readSpectrum(24), none) << entries;
        EXPECT_EQ(sdk.takeCalls(), Texts{"GetConnectionStatus SIM1"});
    }
    spectra[0].numberOfReflections = 36;
    sdk.use(R"({"samples": {"count": 0}})");
    expectNothing(24, "GetNumberOfAvailableSamples SIM1");
    sdk.use(R"({"button": {"never": true}})");
    expectNothing(24, "GetButtonStatusD SIM1");
    expectNothing(1, "GetButtonStatusD SIM1");
    EXPECT_TRUE(listener.lines.empty());
}

TEST_F(Measurement, ReturnsTheSamplesThatTheScanFound) {
    openAndCalibrate();
    for (const int32_t samples : {24, 20}) {
        sdk.use(R"({"samples": {"count": )" + std::to_string(samples) + "}}");
        EXPECT_EQ(read(24), (Reading{true, samples}));
    }
    sdk.use(R"({"samples": {"count": 1}})");
    sdk.takeCalls();
    EXPECT_EQ(read(INT32_MAX), (Reading{true, 1}));
    EXPECT_EQ(sdk.takeCalls()[2], "SetOption SIM1 PatchesPerLine 2147483647");
    for (const int32_t samples : {25, -1, INT32_MIN, INT32_MAX}) {
        listener.lines.clear();
        failNextCall("GetNumberOfAvailableSamples", samples);
        EXPECT_EQ(read(24), (Reading{false, 0})) << samples;
        EXPECT_EQ(sdk.takeCalls().back(), "GetNumberOfAvailableSamples SIM1");
        EXPECT_EQ(listener.lines, Texts{"M7 E1539: invalid number of samples"});
    }
}

TEST_F(Measurement, ReturnsLabUnchangedAndSpectraInPercent) {
    openAndCalibrate();
    ASSERT_EQ(readSpectrum(24), (Reading{true, 24}));
    EXPECT_EQ(reflections[0][0].wavelength, 380);
    EXPECT_EQ(reflections[0][35].wavelength, 730);
    EXPECT_EQ(reflections[0][0].value, 0.048F * 100.0F); // dark skin
    EXPECT_EQ(reflections[0][35].value, 0.372F * 100.0F);
    ASSERT_EQ(read(24), (Reading{true, 24}));
    EXPECT_NEAR(values[18].L, 95.45F, 0.005F); // white
    EXPECT_NEAR(values[14].a, 48.54F, 0.005F); // red
    EXPECT_NEAR(values[14].b, 24.31F, 0.005F);
}

TEST_F(Measurement, FillsLaterRecordsUpToTheirSize) {
    openAndCalibrate();
    spectra[1].numberOfReflections = 10;
    spectra[2] = {0, nullptr};
    spectra[3] = {-5, nullptr};
    spectra[4].numberOfReflections = 40;
    EXPECT_EQ(readSpectrum(5), (Reading{true, 5}));
    EXPECT_EQ(reflections[1][9].wavelength, 470);
    EXPECT_EQ(reflections[1][10].wavelength, 0);
    EXPECT_EQ(spectra[1].numberOfReflections, 10);
    EXPECT_EQ(reflections[4][35].wavelength, 730);
    EXPECT_EQ(reflections[4][36].wavelength, 0);

    spectra[3] = {36, nullptr};
    EXPECT_EQ(readSpectrum(5), (Reading{false, 3}));
    spectra[3] = {1, nullptr};
    EXPECT_EQ(readSpectrum(5), (Reading{false, 3}));
    EXPECT_EQ(listener.lines.size(), 2U);
}

TEST_F(Measurement, NeedsAnArrayOnlyForWhatItMeasured) {
    const auto expect = [&](int32_t patches, bool answer, const Texts& calls) {
        int32_t count = patches;
        EXPECT_EQ(module.read(handle, nullptr, &count), answer);
        EXPECT_EQ(std::exchange(count, patches), 0);
        EXPECT_EQ(sdk.takeCalls(), calls);
        EXPECT_EQ(module.readSpectrum(handle, nullptr, &count), answer);
        EXPECT_EQ(count, 0);
        EXPECT_EQ(sdk.takeCalls(), calls);
        EXPECT_EQ(std::exchange(listener.lines, {}).size(), answer ? 0U : 2U);
    };
    const Texts polling{"GetConnectionStatus SIM1", "SetOption SIM1 MeasurementMode ReflectanceSpot",
                        "GetButtonStatusD SIM1"};
    expect(1, true, {});
    openAndCalibrate();
    expect(0, true, {"GetConnectionStatus SIM1"});
    expect(-1, true, {"GetConnectionStatus SIM1"});
    expect(1, false, polling);
    sdk.use(R"({"button": {"never": true}})");
    expect(1, true, polling);
}

// The objects share the SDK library and the instrument, but not their state.
TEST_F(Measurement, GoesOnWhileAnotherObjectUsesTheSdk) {
    openAndCalibrate();
    SPM_HANDLE const other = module.create();
    EXPECT_EQ(read(24), (Reading{true, 24}));
    EXPECT_TRUE(module.open(other, "USB"));
    EXPECT_EQ(read(24), (Reading{false, 0})) << "opening ended the calibration";
    module.close(other);
    EXPECT_TRUE(module.isOpened(handle));
    EXPECT_EQ(read(24), (Reading{false, 0})) << "the instrument is closed";
    EXPECT_EQ(listener.lines.size(), 2U);
    openAndCalibrate();
    EXPECT_EQ(read(24), (Reading{true, 24}));
    sdk.takeCalls();
    module.destroy(other);
    EXPECT_EQ(sdk.takeCalls(), Texts{"SetGlobalOption Reset All"});
    EXPECT_TRUE(module.isOpened(handle));
    EXPECT_EQ(read(24), (Reading{true, 24})) << "after the reset";
}

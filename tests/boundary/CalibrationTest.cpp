#include "tests/boundary/ModuleTest.h"

namespace {

class Calibration : public ModuleTest {
protected:
    /// One step of the dialogue; gives the whole answer.
    std::vector<uint32_t> step(uint32_t request) {
        SPM_CALIBRATION record{9, 9, 9, 9, request};
        module.calibrate(handle, &record);
        return {record.aperture, record.illumination, record.auxiliary, record.reference, record.step};
    }

    /// The three calls behind a pressed button.
    const Texts calibrating{
        "GetConnectionStatus SIM1",
        "GetButtonStatusD SIM1",
        "SetOption SIM1 PrecisionCalibration 1",
        "SetOption SIM1 MeasurementMode ReflectanceSpot",
        "Calibrate SIM1",
    };
    const Texts statusOnly{"GetConnectionStatus SIM1"};
    const Texts buttonOnly{"GetConnectionStatus SIM1", "GetButtonStatusD SIM1"};
};

using Answer = std::vector<uint32_t>;

const Answer nothing{0, 0, 0, 0, 3};
const Answer again{0, 0, 0, 1, 1};
const Answer done{0, 0, 0, 0, 4};

} // namespace

TEST_F(Calibration, DoesNothingWhileClosed) {
    for (const uint32_t request : {0U, 1U, 2U, 3U, 4U, 5U}) {
        EXPECT_EQ(step(request), nothing) << request;
    }
    EXPECT_FALSE(module.isCalibrated(handle));
    EXPECT_TRUE(takeCalls().empty());
}

TEST_F(Calibration, WaitsForTheButtonAndCalibrates) {
    open();
    sdk.use(R"({"button": {"polls": 2}})");
    struct Case {
        uint32_t request;
        Answer answer;
        Texts calls;
    };
    const std::vector<Case> dialogue{
        {1, nothing, statusOnly}, // not begun
        {4, done, statusOnly},    // calibrated or not
        {0, again, statusOnly},   {1, again, buttonOnly}, {1, again, buttonOnly},   {1, done, calibrating},
        {1, done, statusOnly},                                                      // stays calibrated
        {4, done, statusOnly},    {1, done, statusOnly},  {3, nothing, statusOnly}, // drops the calibration
        {1, nothing, statusOnly}, {0, again, statusOnly}, {2, nothing, statusOnly}, // drops the begin
        {1, nothing, statusOnly}, {0, again, statusOnly}, {5, nothing, statusOnly}, {0xFFFFFFFF, nothing, statusOnly},
    };
    for (const Case& each : dialogue) {
        EXPECT_EQ(step(each.request), each.answer) << "case " << (&each - dialogue.data());
        EXPECT_EQ(takeCalls(), each.calls) << "case " << (&each - dialogue.data());
    }
}

TEST_F(Calibration, NeedsANewBeginAfterAFailure) {
    open();
    sdk.use(R"({"button": {"polls": 0}})");
    EXPECT_EQ(step(0), again);
    sdk.answer({.function = "I1PRO3_Calibrate", .result = 9});
    EXPECT_EQ(step(1), nothing);
    EXPECT_EQ(step(1), nothing);
    EXPECT_EQ(step(0), again);
    EXPECT_EQ(step(1), done);
}

TEST_F(Calibration, EndsWithTheConnection) {
    prepare();
    EXPECT_EQ(step(1), done);
    open();
    EXPECT_EQ(step(1), nothing);
}

TEST_F(Calibration, AsksTheInstrument) {
    open();
    const Texts calls{"GetConnectionStatus SIM1", "SetOption SIM1 MeasurementMode ReflectanceSpot",
                      "TriggerMeasurement SIM1"};
    struct Case {
        int32_t result;
        bool calibrated;
    };
    for (const Case each : {Case{13, false}, Case{12, true}, Case{-1, true}}) {
        sdk.answer({.function = "I1PRO3_TriggerMeasurement", .result = each.result});
        EXPECT_EQ(module.isCalibrated(handle), each.calibrated) << each.result;
        EXPECT_EQ(takeCalls(), calls);
    }
}

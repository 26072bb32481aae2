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
};

using Answer = std::vector<uint32_t>;

const Answer nothing{0, 0, 0, 0, 3};
const Answer again{0, 0, 0, 1, 1};
const Answer done{0, 0, 0, 0, 4};

const Texts status{"GetConnectionStatus SIM1"};
const Texts look{"GetConnectionStatus SIM1", "GetButtonStatusD SIM1"};
const Texts calibrate{"GetConnectionStatus SIM1", "GetButtonStatusD SIM1", "SetOption SIM1 PrecisionCalibration 1",
                      "SetOption SIM1 MeasurementMode ReflectanceSpot", "Calibrate SIM1"};

} // namespace

TEST_F(Calibration, FollowsTheStateTable) {
    struct Case {
        uint32_t request;
        Answer answer;
        Texts calls;
    };
    // The button is found pressed at each third look.
    const std::vector<Case> dialogue{
        {1, nothing, status}, {4, done, status}, // open: calibrated or not
        {0, again, status},   {1, again, look},  // pending
        {0, again, status},   {1, again, look},     {4, done, status},    {1, done, calibrate},
        {1, done, status},                      // calibrated
        {0, again, status},   {1, again, look}, // begun anew
        {1, again, look},     {1, done, calibrate}, {4, done, status},    {1, done, status},
        {3, nothing, status}, {1, nothing, status}, // dropped
        {0, again, status},   {2, nothing, status}, {1, nothing, status}, {0, again, status},
        {5, nothing, status}, {1, nothing, status}, {0, again, status},   {UINT32_MAX, nothing, status},
        {1, nothing, status},
    };
    for (const uint32_t request : {0U, 1U, 4U}) {
        EXPECT_EQ(step(request), nothing) << request << " while closed";
    }
    EXPECT_FALSE(module.isCalibrated(handle));
    EXPECT_TRUE(sdk.takeCalls().empty());
    open();
    sdk.use(R"({"button": {"polls": 2}})");
    for (const Case& each : dialogue) {
        EXPECT_EQ(step(each.request), each.answer) << "case " << (&each - dialogue.data());
        EXPECT_EQ(sdk.takeCalls(), each.calls) << "case " << (&each - dialogue.data());
    }
}

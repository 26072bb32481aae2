#include "tests/boundary/ModuleTest.h"

namespace {

class Calibration : public ModuleTest {
protected:
    /// Performs one step and returns the whole reply.
    std::vector<uint32_t> step(uint32_t request) {
        SPM_CALIBRATION record{9, 9, 9, 9, request};
        module.calibrate(handle, &record);
        return {record.aperture, record.illumination, record.auxiliary, record.reference, record.step};
    }
};

using Reply = std::vector<uint32_t>;

const Reply nothing{0, 0, 0, 0, 3};
const Reply waiting{0, 0, 0, 1, 1};
const Reply done{0, 0, 0, 0, 4};

const Texts query{"GetConnectionStatus SIM1"};
const Texts poll{"GetConnectionStatus SIM1", "GetButtonStatusD SIM1"};
const Texts calibrate{"GetConnectionStatus SIM1", "GetButtonStatusD SIM1", "SetOption SIM1 PrecisionCalibration 1",
                      "SetOption SIM1 MeasurementMode ReflectanceSpot", "Calibrate SIM1"};

} // namespace

TEST_F(Calibration, FollowsTheStateTable) {
    // A request, the reply and the calls. The button is found pressed at every third poll.
    const std::vector<std::tuple<uint32_t, Reply, Texts>> dialogue{
        {1, nothing, query}, {4, done, query},   // open; 4 is always echoed
        {0, waiting, query}, {1, waiting, poll}, // pending
        {0, waiting, query}, {1, waiting, poll},   {4, done, query},    {1, done, calibrate},
        {1, done, query},                        // calibrated
        {0, waiting, query}, {1, waiting, poll}, // begun again
        {1, waiting, poll},  {1, done, calibrate}, {4, done, query},    {1, done, query},
        {3, nothing, query}, {1, nothing, query}, // discarded
        {0, waiting, query}, {2, nothing, query},  {1, nothing, query}, {0, waiting, query},
        {5, nothing, query}, {1, nothing, query},  {0, waiting, query}, {UINT32_MAX, nothing, query},
        {1, nothing, query},
    };
    for (const uint32_t request : {0U, 1U, 4U}) {
        EXPECT_EQ(step(request), nothing) << request << " while closed";
    }
    EXPECT_FALSE(module.isCalibrated(handle));
    EXPECT_TRUE(sdk.takeCalls().empty());
    open();
    sdk.use(R"({"button": {"polls": 2}})");
    for (std::size_t i = 0; i < dialogue.size(); ++i) {
        const auto& [request, reply, calls] = dialogue[i];
        EXPECT_EQ(step(request), reply) << "case " << i;
        EXPECT_EQ(sdk.takeCalls(), calls) << "case " << i;
    }
}

TEST_F(Calibration, LogsAFailedCloseOfALostConnection) {
    open();
    sdk.use(R"({"faults": [{"function": "I1PRO3_GetConnectionStatus", "exception": "lost"},
                           {"function": "I1PRO3_CloseDevice", "result": 9}]})");
    EXPECT_EQ(step(0), nothing);
    EXPECT_EQ(listener.lines.size(), 1U);
    EXPECT_FALSE(module.isOpened(handle));
}

#include "tests/boundary/ModuleTest.h"

#include <tuple>

namespace {

class Connection : public ModuleTest {
protected:
    std::tuple<uint32_t, uint32_t, uint32_t> status() const {
        const SPM_STATUS status = module.getStatus(handle);
        return {status.aperture, status.illumination, status.auxiliary};
    }
};

const Texts opening{
    "GetDevices",
    "OpenDevice SIM1",
    "SetOption SIM1 Colorimetric.Illumination D65",
    "SetOption SIM1 Colorimetric.Observer TenDegree",
    "SetOption SIM1 ColorSpaceDescription.Type CIELab",
    "GetConnectionStatus SIM1",
    "GetOption SIM1 AvailableIlluminationsKey 65000",
    "GetConnectionStatus SIM1",
    "GetConnectionStatus SIM1",
};
const Texts closing{"GetConnectionStatus SIM1", "CloseDevice SIM1", "SetGlobalOption Reset All"};

Texts operator+(Texts left, const Texts& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

} // namespace

TEST_F(Connection, OpensClosesAndOpensAgain) {
    EXPECT_TRUE(takeCalls().empty());
    EXPECT_FALSE(module.isOpened(handle));
    module.close(handle);
    EXPECT_EQ(status(), std::tuple(0U, 0U, 0U));
    EXPECT_TRUE(takeCalls().empty());

    EXPECT_TRUE(module.open(handle, "USB"));
    EXPECT_EQ(takeCalls(), opening);
    EXPECT_EQ(status(), std::tuple(1U, 1U, 0U));
    EXPECT_EQ(takeCalls(), (Texts{"GetConnectionStatus SIM1", "GetOption SIM1 AvailableIlluminationsKey 65000"}));
    EXPECT_TRUE(module.isOpened(handle));
    EXPECT_EQ(takeCalls(), Texts{"GetConnectionStatus SIM1"});

    EXPECT_TRUE(module.open(handle, ""));
    EXPECT_EQ(takeCalls(), closing + opening);
    module.close(handle);
    EXPECT_EQ(takeCalls(), closing);
    EXPECT_FALSE(module.isOpened(handle));
    module.close(handle);
    EXPECT_EQ(takeCalls(), closing);
    EXPECT_EQ(log(), (Texts{"M7 D: close", "M7 D: close", "M7 D: open[USB]", "M7 D: open[USB] done", "M7 D: close",
                            "M7 D: open[]", "M7 D: open[] done", "M7 D: close", "M7 D: close"}));
    EXPECT_TRUE(listener.lines.empty());
}

TEST_F(Connection, TakesTheFirstOfTwoInstruments) {
    sdk.use(R"({"instruments": ["SIM1", "SIM2"]})");
    EXPECT_TRUE(module.open(handle, "USB"));
    EXPECT_EQ(takeCalls(), opening);
}

TEST_F(Connection, FailsWithoutAnInstrument) {
    sdk.use(R"({"instruments": []})");
    EXPECT_FALSE(module.open(handle, "USB"));
    EXPECT_EQ(takeCalls(), Texts{"GetDevices"});
    EXPECT_FALSE(module.isOpened(handle));
    EXPECT_EQ(log(), (Texts{"M7 D: close", "M7 D: open[USB]", "M7 D: close", "M7 D: open[USB] failed"}));
    EXPECT_TRUE(listener.lines.empty());
}

TEST_F(Connection, TakesACountWithoutAListForNoInstrument) {
    sdk.answer({.function = "I1PRO3_GetDevices", .outputSize = 0xFFFFFFFF});
    EXPECT_FALSE(module.open(handle, "USB"));
    EXPECT_EQ(takeCalls(), Texts{"GetDevices"});
}

TEST_F(Connection, SelectsTheInstrumentsOptionsWhileOpen) {
    const auto hasSelection = [&] { return handle->setOptionsByName(nullptr, nullptr, nullptr); };
    EXPECT_FALSE(hasSelection());
    open();
    EXPECT_TRUE(hasSelection());
    module.close(handle);
    EXPECT_FALSE(hasSelection());
}

TEST_F(Connection, DestroyingOnlyResets) {
    SPM_HANDLE other = module.create();
    module.destroy(other);
    EXPECT_EQ(takeCalls(), Texts{"SetGlobalOption Reset All"});
    module.destroy(nullptr);
    EXPECT_TRUE(takeCalls().empty());
}

TEST_F(Connection, AFailedResetDoesNotLeaveTheDestruction) {
    SPM_HANDLE other = module.create();
    other->AddListener(&listener);
    sdk.answer({.function = "I1PRO3_SetGlobalOption", .result = 9});
    module.destroy(other);
    EXPECT_EQ(listener.lines, Texts{"M7 E1539: Simulated failure of I1PRO3_SetGlobalOption\nErrorNumber: 9"});
}

TEST_F(Connection, AFailedCloseEndsAnOpenAtOnce) {
    open();
    sdk.answer({.function = "I1PRO3_CloseDevice", .result = 9});
    EXPECT_FALSE(module.open(handle, "USB"));
    EXPECT_EQ(takeCalls(), (Texts{"GetConnectionStatus SIM1", "CloseDevice SIM1", "GetGlobalOption LastErrorText 65000",
                                  "GetGlobalOption LastErrorNumber 65000"}));
    EXPECT_EQ(log().back(), "M7 D: close");
    EXPECT_FALSE(module.isOpened(handle));

    sdk.answer({.function = "I1PRO3_OpenDevice", .result = 9});
    sdk.answer({.function = "I1PRO3_CloseDevice", .position = 2, .result = 9});
    EXPECT_FALSE(module.open(handle, "USB"));
    EXPECT_EQ(log().back(), "M7 D: close");
    EXPECT_TRUE(module.open(handle, "USB"));
}

TEST_F(Connection, ClosesWhenTheStatusThrows) {
    open();
    sdk.answer({.function = "I1PRO3_GetConnectionStatus", .throws = true});
    EXPECT_FALSE(module.isOpened(handle));
    EXPECT_EQ(takeCalls(), Texts{"GetConnectionStatus SIM1"} + closing);
    EXPECT_FALSE(module.isOpened(handle));
    EXPECT_TRUE(takeCalls().empty());
}

TEST_F(Connection, GivesTheSameStatusWhateverTheInstrumentLists) {
    open();
    sdk.answer({.function = "I1PRO3_GetOption", .output = std::string(70'000, ';'), .outputSize = 70'000});
    EXPECT_EQ(status(), std::tuple(1U, 1U, 0U));
    sdk.answer({.function = "I1PRO3_GetOption", .output = "", .outputSize = 0});
    EXPECT_EQ(status(), std::tuple(1U, 1U, 0U));
}

TEST_F(Connection, TakesErrorTextsAsTheyAre) {
    struct Case {
        simulator::Answer text;
        simulator::Answer number;
        std::string message;
        std::string secondSize;
    };
    const auto answer = [](const std::string& key, simulator::Answer given) {
        given.function = "I1PRO3_GetGlobalOption";
        given.argument = key;
        return given;
    };
    const std::string full(65'000, 'x');
    const std::vector<Case> cases{
        {{.output = "100%s%n\n"}, {.output = "%d"}, "100%s%n\n", "65000"},
        {{.output = full + "y"}, {.output = "42"}, full, "65000"},
        {{.output = "text", .outputSize = 3}, {.output = "42"}, "text", "3"},
        {{.result = 5}, {.result = 5}, "", "65000"},
    };
    for (const Case& each : cases) {
        sdk.clearAnswers();
        sdk.answer({.function = "I1PRO3_GetDevices", .result = 9});
        sdk.answer(answer("LastErrorText", each.text));
        sdk.answer(answer("LastErrorNumber", each.number));
        takeCalls();
        listener.lines.clear();
        EXPECT_FALSE(module.open(handle, "USB"));
        ASSERT_EQ(listener.lines.size(), 1U);
        // The second answer lies over the first in the buffer that both share.
        const std::string number = each.number.output.value_or("");
        const std::string left = each.message.size() > number.size() ? each.message.substr(number.size()) : "";
        EXPECT_EQ(listener.lines[0], "M7 E1539: " + each.message + "\nErrorNumber: " + number + left);
        EXPECT_EQ(takeCalls(), (Texts{"GetDevices", "GetGlobalOption LastErrorText 65000",
                                      "GetGlobalOption LastErrorNumber " + each.secondSize}));
    }
}

TEST_F(Connection, CutsALongDeviceNameInTheLogOnly) {
    const std::string device = "%s" + std::string(2000, 'x');
    EXPECT_TRUE(module.open(handle, device.c_str()));
    EXPECT_EQ(log()[1], "M7 D: " + ("open[" + device).substr(0, 1024));
}

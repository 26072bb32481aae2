#include "tests/boundary/ModuleTest.h"

namespace {

class Connection : public ModuleTest {
protected:
    bool hasSelectedOptions() { return handle->setOptionsByName(nullptr, nullptr, nullptr); }
};

} // namespace

// FaultSweep checks the calls of opening.
TEST_F(Connection, OpensClosesAndReopens) {
    EXPECT_FALSE(module.isOpened(handle));
    module.close(handle);
    EXPECT_EQ(module.getStatus(handle).aperture, 0U);
    EXPECT_FALSE(hasSelectedOptions());
    EXPECT_TRUE(sdk.takeCalls().empty());

    open();
    const SPM_STATUS status = module.getStatus(handle);
    EXPECT_EQ(std::tuple(status.aperture, status.illumination, status.auxiliary), std::tuple(1U, 1U, 0U));
    EXPECT_TRUE(hasSelectedOptions());
    EXPECT_TRUE(module.isOpened(handle));
    sdk.takeCalls();

    EXPECT_TRUE(module.open(handle, ""));
    Texts reopening = sdk.takeCalls();
    reopening.resize(closing.size());
    EXPECT_EQ(reopening, closing);
    module.close(handle);
    EXPECT_FALSE(module.isOpened(handle));
    EXPECT_FALSE(hasSelectedOptions());
    EXPECT_EQ(sdk.takeCalls(), closing);
    module.close(handle);
    EXPECT_EQ(sdk.takeCalls(), closing) << "closes again";
    EXPECT_EQ(log(), (Texts{"M7 D: close", "M7 D: close", "M7 D: open[USB]", "M7 D: open[USB] done", "M7 D: close",
                            "M7 D: open[]", "M7 D: open[] done", "M7 D: close", "M7 D: close"}));
    EXPECT_TRUE(listener.lines.empty());
}

TEST_F(Connection, FailsWithoutAnInstrument) {
    for (const char* script :
         {R"({"instruments": []})", R"({"faults": [{"function": "I1PRO3_GetDevices", "size": 4294967295}]})"}) {
        sdk.use(script);
        EXPECT_FALSE(module.open(handle, "USB"));
        EXPECT_EQ(sdk.takeCalls(), Texts{"GetDevices"});
        EXPECT_FALSE(module.isOpened(handle));
    }
    EXPECT_EQ(log().back(), "M7 D: open[USB] failed");
    EXPECT_TRUE(listener.lines.empty());

    sdk.use(R"({"instruments": ["SIM1", "SIM2"]})");
    EXPECT_TRUE(module.open(handle, "USB"));
    EXPECT_EQ(sdk.takeCalls()[1], "OpenDevice SIM1") << "the first of two";
}

TEST_F(Connection, DestroyResetsButDoesNotClose) {
    open();
    module.destroy(nullptr);
    failNextCall("SetGlobalOption");
    module.destroy(std::exchange(handle, nullptr));
    EXPECT_EQ(sdk.takeCalls(), (Texts{"SetGlobalOption Reset All", "GetGlobalOption LastErrorText 65000",
                                      "GetGlobalOption LastErrorNumber 65000"}));
    const std::string message = "M7 E1539: Simulated failure of I1PRO3_SetGlobalOption\nErrorNumber: 9";
    EXPECT_EQ(listener.lines, Texts{message});
    EXPECT_TRUE(readText(logFile()).find("M7 D: close\n") < readText(logFile()).find(message));
}

TEST_F(Connection, FailedCloseAbortsOpen) {
    open();
    failNextCall("CloseDevice");
    EXPECT_FALSE(module.open(handle, "USB"));
    EXPECT_EQ(sdk.takeCalls(), (Texts{"GetConnectionStatus SIM1", "CloseDevice SIM1",
                                      "GetGlobalOption LastErrorText 65000", "GetGlobalOption LastErrorNumber 65000"}));
    EXPECT_EQ(log().back(), "M7 D: close");
    EXPECT_FALSE(module.isOpened(handle));

    sdk.use(R"({"faults": [{"function": "I1PRO3_OpenDevice", "result": 9},
                           {"function": "I1PRO3_CloseDevice", "call": 2, "result": 9}]})");
    EXPECT_FALSE(module.open(handle, "USB"));
    EXPECT_EQ(log().back(), "M7 D: close");
    EXPECT_TRUE(module.open(handle, "USB"));
}

// Error texts are not used as a format, nor read beyond the buffer. Both queries share the buffer and the size.
TEST_F(Connection, LogsErrorTextsVerbatim) {
    const std::string longText(65'001, 'x');
    sdk.use(R"({"faults": [{"function": "I1PRO3_GetDevices", "result": 9, "times": 2},
        {"function": "I1PRO3_GetGlobalOption", "output": "100%s%n", "size": 3},
        {"function": "I1PRO3_GetGlobalOption", "output": "%d", "call": 2},
        {"function": "I1PRO3_GetGlobalOption", "output": ")" +
            longText + R"(", "call": 3},
        {"function": "I1PRO3_GetGlobalOption", "output": "42", "call": 4}]})");
    EXPECT_FALSE(module.open(handle, "USB"));
    EXPECT_FALSE(module.open(handle, "USB"));
    EXPECT_EQ(listener.lines, (Texts{"M7 E1539: 100%s%n\nErrorNumber: %d0%s%n",
                                     "M7 E1539: " + longText.substr(1) + "\nErrorNumber: 42" + longText.substr(3)}));
    EXPECT_EQ(sdk.takeCalls(),
              (Texts{"GetDevices", "GetGlobalOption LastErrorText 65000", "GetGlobalOption LastErrorNumber 3",
                     "GetDevices", "GetGlobalOption LastErrorText 65000", "GetGlobalOption LastErrorNumber 65000"}));
}

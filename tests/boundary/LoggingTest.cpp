#include "cap/CAPLoggingMessage.h"
#include "tests/boundary/ModuleTest.h"

using Logging = ModuleTest;

TEST_F(Logging, WritesWhatTheSettingsSelect) {
    const std::vector<std::tuple<std::optional<uint32_t>, uint32_t, Texts>> cases{
        {1, 0, {"M7 D: three"}}, {1, 2, {"M7 D: three", "M7 D: four"}}, {0, 1, {}}, {std::nullopt, 1, {}}};
    module.destroy(std::exchange(handle, nullptr));
    for (const auto& [logging, details, written] : cases) {
        settings.clear();
        if (logging) settings.setNumber("Logging", *logging);
        if (details != 0) settings.setNumber("Details", details);
        std::filesystem::remove(logFile());
        SPM_HANDLE const other = module.create();
        other->AddListener(&listener);
        other->LogMessage(CAPLoggingMessage(3, 7, "three"));
        other->LogMessage(CAPLoggingMessage(4, 7, "four"));
        EXPECT_EQ(log(), written);
        EXPECT_TRUE(listener.lines.empty()) << "listeners receive no debug messages";
        module.destroy(other);
    }
}

TEST_F(Logging, WritesOnlyBannersWithoutAListener) {
    handle->RemoveListener();
    failNextCall("OpenDevice");
    EXPECT_FALSE(module.open(handle, "USB"));
    module.destroy(std::exchange(handle, nullptr));
    EXPECT_TRUE(linesOf(readText(logFile())).front().ends_with("] M0 D: ----- Started Logging -----"));
    EXPECT_EQ(log(), Texts{"M0 D: ----- Stopped Logging -----"});
}

TEST_F(Logging, OmitsMessagesThatTheListenerRejects) {
    ThrowingListener thrower(1);
    handle->AddListener(&thrower);
    EXPECT_THROW(handle->LogMessage(CAPLoggingMessage(2, 7, "refused")), CAPException);
    handle->LogMessage(CAPLoggingMessage(3, 7, "trace"));
    EXPECT_EQ(log(), Texts{"M7 D: trace"});
}

#include "cap/CAPLoggingMessage.h"
#include "common/System.h"
#include "listener/SPM_listener.h"
#include "tests/boundary/ModuleTest.h"

#include <fmt/format.h>

namespace {

/// Takes the place of the fixture's own listener.
class Subscription : public ModuleTest {
protected:
    static void keep(void* context, int32_t level, int32_t moduleNumber, int32_t errorNumber, const char* text,
                     const char* detail) {
        static_cast<Texts*>(context)->push_back(
            fmt::format("{} M{} E{} {}; {}", level, moduleNumber, errorNumber, text, detail));
    }

    Texts takeMessages() { return std::exchange(messages, {}); }

    Texts messages;
};

} // namespace

TEST_F(Subscription, TellsWhyACallFailedUntilItEnds) {
    SPM_SUBSCRIPTION* const subscription = SPM_subscribe(handle, keep, &messages);
    fail("OpenDevice");
    EXPECT_FALSE(module.open(handle, "USB"));
    EXPECT_EQ(takeMessages(), Texts{"0 M7 E1539 Simulated failure of I1PRO3_OpenDevice\nErrorNumber: 9; "});
    open();
    fail("Calibrate", 7);
    SPM_CALIBRATION calibration{};
    module.calibrate(handle, &calibration);
    module.calibrate(handle, &calibration);
    EXPECT_EQ(takeMessages(), Texts{"0 M7 E1539 Simulated failure of I1PRO3_Calibrate\nErrorNumber: 7; "});
    for (const int32_t level : {-1, 0, 1, 2, 3}) {
        handle->LogMessage(CAPLoggingMessage(level, 1, "level"));
    }
    handle->LogMessage(CAPLoggingMessage(CAPException(3, 2, "text", "detail")));
    EXPECT_EQ(takeMessages(), (Texts{"0 M1 E0 level; ", "1 M1 E0 level; ", "2 M1 E0 level; ", "0 M2 E3 text; detail"}));
    SPM_unsubscribe(subscription);
    handle->LogMessage(CAPLoggingMessage(0, 1, "late"));
    EXPECT_TRUE(messages.empty());
}

TEST_F(Subscription, DropsWhatTheCallbackThrows) {
    const SPM_MESSAGE_CALLBACK throwing[]{
        [](void*, int32_t, int32_t, int32_t, const char*, const char*) { throw 1; },
        [](void*, int32_t, int32_t, int32_t, const char*, const char*) { common::throwForeign("foreign"); }};
    for (const SPM_MESSAGE_CALLBACK callback : throwing) {
        SPM_SUBSCRIPTION* const subscription = SPM_subscribe(handle, callback, nullptr);
        EXPECT_NO_THROW(handle->LogMessage(CAPLoggingMessage(0, 7, "text")));
        EXPECT_EQ(log().back(), "M7 E0: text") << "the module goes on with the message";
        SPM_unsubscribe(subscription);
    }
}

TEST_F(Subscription, NeedsAnObjectAndACallback) {
    EXPECT_EQ(SPM_subscribe(nullptr, keep, &messages), nullptr);
    EXPECT_EQ(SPM_subscribe(handle, nullptr, &messages), nullptr);
    SPM_unsubscribe(nullptr);
    fail("OpenDevice");
    EXPECT_FALSE(module.open(handle, "USB"));
    EXPECT_EQ(listener.lines.size(), 1U) << "the object keeps its listener";
}

#include "cap/CAPLoggingMessage.h"
#include "listener/SPM_listener.h"
#include "simulator/Fault.h"
#include "tests/boundary/ModuleTest.h"

#include <fmt/format.h>

using Subscription = ModuleTest;

static void keep(void* context, int32_t level, int32_t part, int32_t error, const char* text, const char* detail) {
    static_cast<Texts*>(context)->push_back(fmt::format("{} M{} E{} {}; {}", level, part, error, text, detail));
}

TEST_F(Subscription, DeliversMessagesUntilUnsubscribed) {
    Texts messages;
    SPM_SUBSCRIPTION* const subscription = SPM_subscribe(handle, keep, &messages);
    EXPECT_TRUE(SPM_subscribe(nullptr, keep, &messages) == nullptr && SPM_subscribe(handle, nullptr, this) == nullptr);
    SPM_unsubscribe(nullptr);
    failNextCall("OpenDevice");
    EXPECT_FALSE(module.open(handle, "USB"));
    EXPECT_EQ(std::exchange(messages, {}),
              Texts{"0 M7 E1539 Simulated failure of I1PRO3_OpenDevice\nErrorNumber: 9; "});
    for (const int32_t level : {-1, 0, 1, 2, 3}) {
        handle->LogMessage(CAPLoggingMessage(level, 1, "level"));
    }
    handle->LogMessage(CAPLoggingMessage(CAPException(3, 2, "text", "detail")));
    SPM_unsubscribe(subscription);
    handle->LogMessage(CAPLoggingMessage(0, 1, "late"));
    EXPECT_EQ(messages, (Texts{"0 M1 E0 level; ", "1 M1 E0 level; ", "2 M1 E0 level; ", "0 M2 E3 text; detail"}));
}

TEST_F(Subscription, DiscardsExceptionsOfCallbacks) {
    const SPM_MESSAGE_CALLBACK throwing[]{[](auto...) { throw 1; },
                                          [](auto...) { simulator::throwForeign("foreign"); }};
    for (const SPM_MESSAGE_CALLBACK callback : throwing) {
        SPM_SUBSCRIPTION* const subscription = SPM_subscribe(handle, callback, nullptr);
        EXPECT_NO_THROW(handle->LogMessage(CAPLoggingMessage(0, 7, "text")));
        EXPECT_EQ(log().back(), "M7 E0: text") << "the module still logs the message";
        SPM_unsubscribe(subscription);
    }
}

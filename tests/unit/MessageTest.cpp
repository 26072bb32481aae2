#include "cap/CAPLoggingMessage.h"
#include "cap/FormatText.h"
#include "module/SPMException.h"

#include <exception>
#include <gtest/gtest.h>

TEST(FormatText, KeepsTheFirst1024Characters) {
    const std::string longText(1020, 'x');
    EXPECT_EQ(FormatText("%s%d", longText.c_str(), 1234), longText + "1234");
    EXPECT_EQ(FormatText("%s%d", longText.c_str(), 12345), longText + "1234");
}

static_assert(!std::is_base_of_v<std::exception, CAPException>, "a handler for the standard classes lets it pass");

TEST(LoggingMessage, RendersAsOneLine) {
    struct Case {
        CAPLoggingMessage message;
        std::string line;
    };
    const std::vector<Case> cases{
        {{3, 7, "close"}, "M7 D: close"},
        {{3, 0, "----- Started Logging -----"}, "M0 D: ----- Started Logging -----"},
        {{1, 7, ""}, "M7 W0"},
        {{2, 7, "text"}, "M7 I: text"},
        {{4, -1, "text"}, "M-1 D: text"},
        {{-1, 7, "text"}, "M7 D: text"},
        {CAPLoggingMessage(SPMException(1539, "lamp")), "M7 E1539: lamp"},
        {CAPLoggingMessage(CAPException(-2, 1, "", "detail")), "M1 E-2; detail"},
        {CAPLoggingMessage(CAPException(3, 1, "text", "detail")), "M1 E3: text; detail"},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(each.message.ToString(), each.line);
    }
}

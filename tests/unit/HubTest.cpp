#include "cap/CAPLoggingHandler.h"
#include "cap/CAPLoggingMessage.h"
#include "module/SPMException.h"
#include "tests/support/Support.h"

#include <gtest/gtest.h>
#include <regex>
#include <stdexcept>

namespace {

/// Returns, as a log line, the exception that a hub throws if its listener throws.
template <class Exception>
std::string thrownThroughHub(Exception exception) {
    CAPLoggingHandler hub;
    ThrowingListener<Exception> listener(std::move(exception));
    hub.AddListener(&listener);
    try {
        hub.LogMessage(CAPLoggingMessage(0, 7, "text"));
    } catch (const CAPException& caught) {
        return CAPLoggingMessage(caught).ToString();
    }
    return "nothing";
}

} // namespace

TEST(LoggingMessage, RendersAsOneLine) {
    const std::vector<std::pair<CAPLoggingMessage, std::string>> cases{
        {{1, 7, ""}, "M7 W0"},
        {{2, 7, "text"}, "M7 I: text"},
        {{3, -1, "text"}, "M-1 D: text"},
        {{4, 7, "text"}, "M7 D: text"},
        {CAPLoggingMessage(SPMException(1539, "lamp")), "M7 E1539: lamp"},
        {CAPLoggingMessage(CAPException(-2, 1, "", "detail")), "M1 E-2; detail"},
        {CAPLoggingMessage(CAPException(3, 1, "text", "detail")), "M1 E3: text; detail"},
    };
    for (const auto& [message, line] : cases) {
        EXPECT_EQ(message.ToString(), line);
    }
}

TEST(Hub, SendsToTheLatestListenerWithItsSource) {
    CAPLoggingHandler hub;
    CAPLoggingHandler between;
    RecordingListener first;
    RecordingListener last;
    hub.Log(3, 7, "unheard");
    hub.AddListener(&first);
    hub.AddListener(&between);
    between.AddListener(&last);
    hub.Log(2, 7, "open[%s]", "USB");
    hub.LogException(CAPException(5, 9, "text", "detail"));
    hub.RemoveListener();
    hub.LogMessage(CAPLoggingMessage(0, 7, "unheard"));
    EXPECT_TRUE(first.lines.empty());
    EXPECT_EQ(last.lines, (std::vector<std::string>{"M7 I: open[USB]", "M9 E5: text; detail"}));
    EXPECT_EQ(last.lastSource, &hub);
}

TEST(Hub, ConvertsExceptionsOfListeners) {
    const std::string place = R"(line [1-9]\d* of CAPLoggingHandler\.cpp)";
    EXPECT_EQ(thrownThroughHub(CAPException(5, 9, "text", "detail")), "M9 E5: text; detail");
    const std::string standard = thrownThroughHub(std::runtime_error("100%s"));
    EXPECT_TRUE(std::regex_match(standard, std::regex("M1 E3: STL exception; 100%s, " + place))) << standard;
    const std::string other = thrownThroughHub(42);
    EXPECT_TRUE(std::regex_match(other, std::regex("M1 E2: Exception; " + place))) << other;
}

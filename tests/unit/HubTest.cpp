#include "cap/CAPLoggingHandler.h"
#include "cap/CAPLoggingMessage.h"
#include "tests/support/Support.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace {

/// What comes out of a hub whose listener throws.
template <class Exception>
CAPException thrownThroughHub(Exception exception) {
    CAPLoggingHandler hub;
    Thrower<Exception> listener(std::move(exception));
    hub.AddListener(&listener);
    try {
        hub.LogMessage(CAPLoggingMessage(0, 7, "text"));
    } catch (const CAPException& caught) {
        return caught;
    }
    throw std::logic_error("nothing was thrown");
}

} // namespace

TEST(Hub, SendsToTheLastListenerOnly) {
    CAPLoggingHandler hub;
    Recorder first;
    Recorder second;
    hub.Log(3, 7, "unheard");
    hub.AddListener(&first);
    hub.AddListener(&second);
    hub.Log(2, 7, "open[%s]", "USB");
    hub.LogException(CAPException(5, 9, "text", "detail"));
    hub.RemoveListener();
    hub.LogMessage(CAPLoggingMessage(0, 7, "unheard"));
    EXPECT_TRUE(first.lines.empty());
    EXPECT_EQ(second.lines, (std::vector<std::string>{"M7 I: open[USB]", "M9 E5: text; detail"}));
    EXPECT_EQ(second.lastSource, &hub);
}

TEST(Hub, PassesOnWithTheSourceItGot) {
    CAPLoggingHandler outer;
    CAPLoggingHandler inner;
    Recorder listener;
    outer.AddListener(&inner);
    inner.AddListener(&listener);
    outer.Log(3, 7, "text");
    EXPECT_EQ(listener.lines, std::vector<std::string>{"M7 D: text"});
    EXPECT_EQ(listener.lastSource, &outer);
}

TEST(Hub, ConvertsWhatAListenerThrows) {
    const CAPException own = thrownThroughHub(CAPException(5, 9, "text", "detail"));
    EXPECT_EQ(CAPLoggingMessage(own).ToString(), "M9 E5: text; detail");

    const std::string standard = CAPLoggingMessage(thrownThroughHub(std::runtime_error("100%s"))).ToString();
    const std::string begin = "M1 E3: STL exception; 100%s, line ";
    EXPECT_EQ(standard.substr(0, begin.size()), begin);
    EXPECT_GT(std::stoi(standard.substr(begin.size())), 0);
    EXPECT_TRUE(standard.ends_with(" of CAPLoggingHandler.cpp")) << standard;

    const std::string other = CAPLoggingMessage(thrownThroughHub(42)).ToString();
    EXPECT_EQ(other.substr(0, 23), "M1 E2: Exception; line ") << other;
    EXPECT_TRUE(other.ends_with(" of CAPLoggingHandler.cpp")) << other;
}

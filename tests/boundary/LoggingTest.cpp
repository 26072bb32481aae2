#include "cap/CAPLoggingMessage.h"
#include "tests/boundary/FailOften.h"
#include "tests/boundary/ModuleTest.h"

#include <future>
#include <regex>

namespace {

class Logging : public ModuleTest {};

} // namespace

TEST_F(Logging, NumbersItsSourcesAndEndsWithTheObject) {
    SPM_HANDLE other = module.create();
    other->AddListener(&listener);
    module.open(other, "second");
    module.open(handle, "first");
    module.destroy(other);
    const std::string text = readText(logFile());
    const auto head = [](SPM_HANDLE source) {
        std::array<char, 16> number{};
        const auto address = reinterpret_cast<std::uintptr_t>(static_cast<ICAPLoggingSource*>(source));
        std::snprintf(number.data(), number.size(), ":%X] ", static_cast<unsigned>(address));
        return std::string(number.data());
    };
    EXPECT_NE(text.find(head(other) + "M7 D: open[second] done\n"), std::string::npos) << text;
    EXPECT_NE(text.find(head(handle) + "M7 D: open[first] done\n"), std::string::npos) << text;
    const Texts messages = log();
    EXPECT_EQ(messages.front(), "M0 D: ----- Started Logging -----") << "that of the second object";
    EXPECT_EQ(messages[messages.size() - 2], "M7 D: close");
    EXPECT_EQ(messages.back(), "M0 D: ----- Stopped Logging -----");
}

TEST_F(Logging, SettingsDecideWhatIsWritten) {
    struct Case {
        std::function<void(Settings&)> set;
        bool three;
        bool four;
    };
    const std::vector<Case> cases{
        {[](Settings& use) { use.setNumber("Logging", 1); }, true, false},
        {[](Settings& use) { use.setNumber("Logging", 1), use.setNumber("Details", 2); }, true, true},
        {[](Settings& use) { use.setNumber("Logging", 0), use.setNumber("Details", 1); }, false, false},
        {[](Settings& use) { use.set(commonKey, "Logging", REG_SZ, std::string("1\0", 2)); }, false, false},
        {[](Settings& use) { use.setNumber("Logging", 1), use.forbid(); }, false, false},
        {[](Settings&) {}, false, false},
    };
    module.destroy(std::exchange(handle, nullptr));
    for (const Case& each : cases) {
        SCOPED_TRACE(&each - cases.data());
        settings.clear();
        each.set(settings);
        std::filesystem::remove(logFile());
        SPM_HANDLE other = module.create();
        Recorder recorder;
        other->AddListener(&recorder);
        other->LogMessage(CAPLoggingMessage(3, 7, "three"));
        other->LogMessage(CAPLoggingMessage(4, 7, "four"));
        const std::string text = readText(logFile());
        EXPECT_EQ(text.find("three") != std::string::npos, each.three);
        EXPECT_EQ(text.find("four") != std::string::npos, each.four);
        EXPECT_TRUE(recorder.lines.empty()) << "details are not for listeners";
        module.destroy(other);
    }
}

TEST_F(Logging, WithoutAListenerOnlyTheBannersAreWritten) {
    handle->RemoveListener();
    sdk.answer({.function = "I1PRO3_OpenDevice", .result = 9});
    EXPECT_FALSE(module.open(handle, "USB"));
    module.destroy(std::exchange(handle, nullptr));
    EXPECT_EQ(log(), Texts{"M0 D: ----- Stopped Logging -----"});
}

TEST_F(Logging, AThrowingListenerKeepsTheMessageFromTheFile) {
    Thrower thrower(1);
    handle->AddListener(&thrower);
    EXPECT_THROW(handle->LogMessage(CAPLoggingMessage(2, 7, "refused")), CAPException);
    handle->LogMessage(CAPLoggingMessage(3, 7, "trace"));
    EXPECT_EQ(log(), Texts{"M7 D: trace"});
    sdk.answer({.function = "I1PRO3_SetGlobalOption", .result = 9});
    module.destroy(std::exchange(handle, nullptr));
    EXPECT_EQ(takeCalls().front(), "SetGlobalOption Reset All") << "and what it throws does not leave the destruction";
}

TEST_F(Logging, LinesOfThreadsAndProcessesStayWhole) {
    constexpr int writers = 4;
    constexpr int times = 25;
    letOpeningFail(sdk);
    std::vector<std::future<int>> ends;
    for (int writer = 0; writer < writers; ++writer) {
        ends.push_back(std::async(std::launch::async, [&] {
            failOften(module, times);
            return 0;
        }));
        ends.push_back(std::async(std::launch::async, [&, writer] {
            const std::string output = "output " + std::to_string(writer);
            return run(host::programFolder() / ("failing_host" + programExtension),
                       {moduleFile().string(), std::to_string(times)}, {folder / output, folder / (output + " err")});
        }));
    }
    for (std::future<int>& end : ends) {
        EXPECT_EQ(end.get(), 0);
    }
    const std::string head = R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d \(UTC[+-]\d\d:\d\d\) \[[0-9A-F:]+\] M)";
    const std::regex line(head + R"(([07] D: .{5,40}|7 E1539: xxxx))");
    int errors = 0;
    for (const std::string& each : linesOf(readText(logFile()))) {
        if (each.starts_with("ErrorNumber")) {
            EXPECT_EQ(each, "ErrorNumber: 9");
            continue;
        }
        const std::size_t text = each.find("xxxx");
        if (text != std::string::npos) {
            ++errors;
            EXPECT_TRUE(each.substr(text) == longErrorText) << "a torn line";
        }
        EXPECT_TRUE(std::regex_match(each.substr(0, text == std::string::npos ? text : text + 4), line)) << each;
    }
    EXPECT_EQ(errors, 2 * writers * times);
}

TEST_F(Logging, AnUnwritableLogDoesNotDisturbMeasuring) {
    module.destroy(std::exchange(handle, nullptr));
    std::filesystem::remove(logFile());
    std::filesystem::create_directory(logFile());
    SPM_HANDLE other = module.create();
    ASSERT_NE(other, nullptr);
    other->AddListener(&listener);
    EXPECT_TRUE(module.open(other, "USB"));
    module.destroy(other);
}

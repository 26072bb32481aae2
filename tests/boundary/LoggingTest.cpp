#include "cap/CAPLoggingMessage.h"
#include "tests/boundary/ModuleTest.h"

#include <csignal>
#include <regex>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

class Logging : public ModuleTest {
protected:
    std::filesystem::path logFile() const { return folder / "spm_i1pro3.log"; }

    /// Opens, with an object of its own, what can't be opened.
    void failOften(int times) const {
        Recorder own;
        SPM_HANDLE other = module.create();
        other->AddListener(&own);
        for (int i = 0; i < times; ++i) {
            module.open(other, "USB");
        }
        module.destroy(other);
    }
};

const std::string longText(20'000, 'x');

} // namespace

TEST_F(Logging, NumbersItsSourcesAndEndsWithTheObject) {
    SPM_HANDLE other = module.create();
    other->AddListener(&listener);
    module.open(other, "second");
    module.open(handle, "first");
    module.destroy(other);
    const std::string text = readFile(logFile());
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
        std::string settings;
        bool three;
        bool four;
    };
    const std::vector<Case> cases{
        {"\"Logging\"=dword:1", true, false},
        {"\"Logging\"=dword:1\n\"Details\"=dword:2", true, true},
        {"\"Logging\"=dword:0\n\"Details\"=dword:1", false, false},
        {"\"Logging\"=\"1\"", false, false},
        {"", false, false},
    };
    for (const Case& each : cases) {
        writeFile(folder / "settings.reg",
                  "REGEDIT4\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM]\n" + each.settings + "\n");
        std::filesystem::remove(logFile());
        SPM_HANDLE other = module.create();
        Recorder own;
        other->AddListener(&own);
        other->LogMessage(CAPLoggingMessage(3, 7, "three"));
        other->LogMessage(CAPLoggingMessage(4, 7, "four"));
        const std::string text = readFile(logFile());
        EXPECT_EQ(text.find("three") != std::string::npos, each.three) << each.settings;
        EXPECT_EQ(text.find("four") != std::string::npos, each.four) << each.settings;
        EXPECT_TRUE(own.lines.empty()) << "details are not for listeners";
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
    sdk.answer({.function = "I1PRO3_GetDevices", .times = 0, .result = 9});
    sdk.answer({.function = "I1PRO3_GetGlobalOption", .argument = "LastErrorText", .times = 0, .output = longText});
    sdk.answer({.function = "I1PRO3_GetGlobalOption",
                .argument = "LastErrorNumber",
                .times = 0,
                .output = std::string("9\0", 2)});
    for (int process = 0; process < writers; ++process) {
        if (fork() != 0) continue;
        failOften(times);
        _exit(0);
    }
    std::vector<std::thread> threads;
    for (int thread = 0; thread < writers; ++thread) {
        threads.emplace_back([&] { failOften(times); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (int process = 0; process < writers; ++process) {
        int status = 0;
        wait(&status);
        EXPECT_EQ(status, 0);
    }
    const std::string head = R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d \(UTC[+-]\d\d:\d\d\) \[[0-9A-F:]+\] M)";
    const std::regex line(head + R"(([07] D: .{5,40}|7 E1539: xxxx))");
    int errors = 0;
    for (const std::string& each : linesOf(readFile(logFile()))) {
        if (each.starts_with("ErrorNumber")) {
            EXPECT_EQ(each, "ErrorNumber: 9");
            continue;
        }
        const std::size_t text = each.find("xxxx");
        if (text != std::string::npos) {
            ++errors;
            EXPECT_TRUE(each.substr(text) == longText) << "a torn line";
        }
        EXPECT_TRUE(std::regex_match(each.substr(0, text == std::string::npos ? text : text + 4), line)) << each;
    }
    EXPECT_EQ(errors, 2 * writers * times);
}

TEST_F(Logging, AFullDiskDoesNotDisturbMeasuring) {
    prepare();
    const std::string before = readFile(logFile());
    const std::size_t room = 30; // for a part of a line
    rlimit earlier{};
    getrlimit(RLIMIT_FSIZE, &earlier);
    const rlimit full{before.size() + room, earlier.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &full);
    EXPECT_TRUE(module.open(handle, "USB"));
    sdk.answer({.function = "I1PRO3_SetOption", .result = 9});
    SPM_LAB lab{};
    int32_t count = 1;
    EXPECT_FALSE(module.read(handle, &lab, &count));
    setrlimit(RLIMIT_FSIZE, &earlier);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(listener.lines.size(), 1U);
    const std::size_t torn = before.size() + room;
    EXPECT_EQ(std::filesystem::file_size(logFile()), torn);
    module.close(handle);
    const std::string after = readFile(logFile()).substr(torn);
    EXPECT_TRUE(after.starts_with("\n2")) << "written again when there is room, on a line of its own: " << after;
    EXPECT_TRUE(after.ends_with("] M7 D: close\n")) << after;
}

TEST_F(Logging, AnUnwritableLogDoesNotDisturbMeasuring) {
    std::filesystem::remove(logFile());
    std::filesystem::create_directory(logFile());
    SPM_HANDLE other = module.create();
    ASSERT_NE(other, nullptr);
    other->AddListener(&listener);
    EXPECT_TRUE(module.open(other, "USB"));
    module.destroy(other);
}

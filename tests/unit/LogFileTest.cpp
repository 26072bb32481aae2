#include "cap/CAPLoggingFile.h"
#include "cap/CAPLoggingHandler.h"
#include "cap/CAPLoggingMessage.h"
#include "cap/FormatText.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <ctime>
#include <gtest/gtest.h>
#include <thread>

namespace {

std::string localTime() {
    const std::time_t now = std::time(nullptr);
    std::array<char, 20> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", std::localtime(&now));
    return text.data();
}

class LogFile : public testing::Test {
protected:
    /// Returns the lines of the file without date, time and zone.
    std::vector<std::string> lines() const {
        std::vector<std::string> result = linesOf(readText(path));
        for (std::string& line : result) {
            line.erase(0, line.find('['));
        }
        return result;
    }

    std::string origin() const {
        return FormatText("[%X:%X", static_cast<unsigned>(GetCurrentProcessId()),
                          static_cast<unsigned>(GetCurrentThreadId()));
    }

    TempFolder folder;
    std::string path = (folder / "a log.txt").string();
    CAPLoggingFile file;
};

} // namespace

// Runs in its own thread, because the main thread's number is that of the process.
TEST_F(LogFile, WritesUpToItsDetailLevel) {
    std::string head;
    CAPLoggingHandler source;
    std::thread([&] {
        head = origin();
        file.OpenFile(path.c_str(), "a");
        file.WriteMessage(CAPLoggingMessage(3, 7, "too detailed"));
        file.WriteMessage(CAPLoggingMessage(2, 7, "two"));
        file.SetDetailLevel(3);
        file.HandleMessage(&source, CAPLoggingMessage(CAPException(1539, 7, "%s%n", "detail")));
        file.HandleMessage(nullptr, CAPLoggingMessage(3, 7, std::string("three\0cut", 9)));
        file.HandleMessage(nullptr, CAPLoggingMessage(4, 7, "too detailed"));
        file.LogText(4, 0, "too detailed");
        file.LogText(3, 0, "%s", std::string(2000, 'x').c_str());
    }).join();
    const auto number =
        static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(static_cast<ICAPLoggingSource*>(&source)));
    EXPECT_NE(head, origin());
    EXPECT_EQ(lines(), (std::vector<std::string>{
                           head + "] M7 I: two",
                           head + FormatText(":%X] M7 E1539: ", number) + "%s%n; detail",
                           head + ":0] M7 D: three",
                           head + "] M0 D: " + std::string(1024, 'x'),
                       }));
}

TEST_F(LogFile, WritesBannersOnOpenAndClose) {
    const std::string started = origin() + "] M0 D: ----- Started Logging -----";
    const std::string stopped = origin() + "] M0 D: ----- Stopped Logging -----";
    const std::string nowhere = (folder / "no such folder/log").string();
    file.SetDetailLevel(3);
    file.CloseFile();
    file.OpenFile(path.c_str(), "a");
    for (const char* next : {static_cast<const char*>(nullptr), nowhere.c_str()}) {
        file.OpenFile(path.c_str(), "a");
        file.OpenFile(next, "a");
        file.LogText(0, 7, "nowhere");
    }
    file.OpenFile(path.c_str(), "a");
    file.OpenForModule(reinterpret_cast<HMODULE>(&file), "a");
    file.LogText(0, 7, "nowhere");
    EXPECT_EQ(lines(),
              (std::vector<std::string>{started, stopped, started, stopped, started, stopped, started, stopped}));
}

TEST_F(LogFile, WritesLocalTimeAndStandardOffset) {
    const std::vector<std::pair<std::string, std::string>> zones{
        {"UTC0", "UTC-00:00"}, {"XXX-1YYY,0/0,J365/25", "UTC+01:00"}, {"XXX5", "UTC-05:00"}, {"XXX-5:30", "UTC+05:30"}};
    for (const auto& [zone, offset] : zones) {
        const EnvironmentVariable variable("TZ", zone);
        CAPLoggingFile log;
        const std::string before = localTime();
        log.SetDetailLevel(3);
        log.OpenFile(path.c_str(), "w");
        const std::string after = localTime();
        const std::string head = readFile(path).substr(0, before.size() + 14);
        EXPECT_EQ(head.substr(before.size()), " (" + offset + ") [") << zone;
        EXPECT_LE(before, head.substr(0, before.size())) << zone;
        EXPECT_GE(after, head.substr(0, before.size())) << zone;
    }
}

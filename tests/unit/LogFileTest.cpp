#include "cap/CAPLoggingFile.h"
#include "cap/CAPLoggingHandler.h"
#include "cap/CAPLoggingMessage.h"
#include "cap/FormatText.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <chrono>
#include <ctime>
#include <gtest/gtest.h>
#include <regex>
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
    /// The lines of the file with date and time cut off, which are checked here.
    std::vector<std::string> lines() const {
        std::vector<std::string> result;
        for (const std::string& line : linesOf(readText(path))) {
            std::smatch parts;
            const std::regex form(R"((\d{4}-\d\d-\d\d \d\d:\d\d:\d\d) \((UTC[+-]\d\d:\d\d)\) (.*))");
            if (!std::regex_match(line, parts, form)) {
                ADD_FAILURE() << line;
                continue;
            }
            result.push_back(parts[3]);
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

TEST_F(LogFile, WritesUpToItsDetailLevel) {
    CAPLoggingHandler source;
    file.OpenFile(path.c_str(), "a");
    file.WriteMessage(CAPLoggingMessage(3, 7, "too detailed"));
    file.WriteMessage(CAPLoggingMessage(2, 7, "two"));
    file.SetDetailLevel(3);
    file.HandleMessage(&source, CAPLoggingMessage(CAPException(1539, 7, "%s%n\nnext", "detail")));
    file.HandleMessage(nullptr, CAPLoggingMessage(3, 7, "three"));
    file.HandleMessage(nullptr, CAPLoggingMessage(4, 7, "too detailed"));
    file.LogText(3, 0, "%s", std::string(2000, 'x').c_str());
    file.CloseFile();

    const auto number =
        static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(static_cast<ICAPLoggingSource*>(&source)));
    const std::string raw = readFile(path);
    const std::string inText = lineEnd + "next";
    const std::string error = origin() + FormatText(":%X] M7 E1539: ", number) + "%s%n" + inText + "; detail" + lineEnd;
    EXPECT_NE(raw.find(error), std::string::npos) << raw;
    writeFile(path, std::string(raw).erase(raw.find(inText), inText.size()));
    EXPECT_EQ(lines(), (std::vector<std::string>{
                           origin() + "] M7 I: two",
                           origin() + FormatText(":%X] M7 E1539: ", number) + "%s%n; detail",
                           origin() + ":0] M7 D: three",
                           origin() + "] M0 D: " + std::string(1024, 'x'),
                           origin() + "] M0 D: ----- Stopped Logging -----",
                       }));
}

TEST_F(LogFile, WritesThoughTheLockIsHeldForGood) {
    file.OpenFile(path.c_str(), "a");
    std::FILE* const other = std::fopen(path.c_str(), "a");
    OVERLAPPED whole{};
    auto* const handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(other)));
    whole.OffsetHigh = 0x7FFFFFFF;
    ASSERT_NE(LockFileEx(handle, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &whole), FALSE);
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < 5; ++i) {
        file.LogText(0, 7, "written");
    }
    const auto waited = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(waited, std::chrono::seconds(1)) << "the first line waits";
    EXPECT_LT(waited, std::chrono::seconds(4)) << "and no other";
    std::fclose(other);
    EXPECT_EQ(lines().size(), 5U);
}

TEST_F(LogFile, NamesTheWritingThread) {
    file.OpenFile(path.c_str(), "a");
    std::string other;
    std::thread([&] {
        other = origin();
        file.LogText(0, 7, "other");
    }).join();
    EXPECT_NE(other, origin());
    EXPECT_EQ(lines().back(), other + "] M7 E0: other");
}

TEST_F(LogFile, AppendsBannersOnOpeningAndClosing) {
    const std::string started = origin() + "] M0 D: ----- Started Logging -----";
    const std::string stopped = origin() + "] M0 D: ----- Stopped Logging -----";
    file.SetDetailLevel(3);
    file.CloseFile();
    file.OpenFile(path.c_str(), "a");
    file.OpenFile(path.c_str(), "a");
    file.OpenFile(nullptr, "a");
    file.LogText(0, 7, "nowhere");
    EXPECT_EQ(lines(), (std::vector<std::string>{started, stopped, started, stopped}));
}

TEST_F(LogFile, StaysClosedWhereItCannotWrite) {
    file.SetDetailLevel(3);
    file.OpenFile((folder / "no such folder/log").string().c_str(), "a");
    file.LogText(0, 7, "nowhere");
    const std::string earlier = (folder / "earlier.log").string();
    file.OpenFile(earlier.c_str(), "a");
    file.OpenForModule(reinterpret_cast<HMODULE>(&file), "a");
    file.LogText(0, 7, "nowhere");
    EXPECT_TRUE(readText(earlier).ends_with("Stopped Logging -----\n")) << "the earlier file was closed";
    file.OpenFile(path.c_str(), "a");
    EXPECT_EQ(lines().size(), 1U);
}

TEST_F(LogFile, ShowsTheLocalTimeAndTheStandardOffsetOfTheZone) {
    struct Zone {
        const char* name;
        const char* text;
    };
    for (const Zone zone : {Zone{"UTC0", "UTC-00:00"}, Zone{"XXX-1YYY,0/0,J365/25", "UTC+01:00"},
                            Zone{"XXX5", "UTC-05:00"}, Zone{"XXX-5:30", "UTC+05:30"}}) {
        const EnvironmentVariable variable("TZ", zone.name);
        CAPLoggingFile log;
        const std::string before = localTime();
        log.SetDetailLevel(3);
        log.OpenFile(path.c_str(), "w");
        const std::string after = localTime();
        const std::string head = readFile(path).substr(0, before.size() + 13);
        EXPECT_EQ(head.substr(before.size()), std::string(" (") + zone.text + ") ") << zone.name;
        EXPECT_LE(before, head.substr(0, before.size())) << zone.name;
        EXPECT_GE(after, head.substr(0, before.size())) << zone.name;
    }
}

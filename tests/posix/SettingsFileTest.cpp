#include "module/SPMRegistry.h"
#include "tests/support/Support.h"

#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

const std::string commonKey = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM]\n";
const std::string headings = "\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova]\n\n" + commonKey;

class SettingsFile : public testing::Test {
protected:
    TempFolder folder;
    std::filesystem::path path = folder / "settings.reg";
    EnvironmentVariable variable{"SPM_REGISTRY", path.string()};
};

} // namespace

TEST_F(SettingsFile, ReadsNumbers) {
    struct Case {
        std::string lines;
        std::uint32_t number;
    };
    const std::vector<Case> cases{
        {"\"Number\"=dword:00000007", 7},
        {"\"number\"=dword:fffffffe", 0xFFFFFFFE},
        {"  \"NUMBER\" = dword:7 \r", 7},
        {"\"Number\"=hex(4):01,02,\\\n  00,80", 0x80000201},
        {"\"Number\"=dword:00000007\n\"Number\"=dword:8", 8},
        {"\"Number\"=dword:00000007\n[hkey_local_machine\\software\\kestrova\\spm]\n\"Number\"=dword:8", 8},
        {"\"Number\"=dword:00000007\n\"Number\"=what is this", 7},
        {"\"Number\"=dword:00000007\n[other]\n\"Number\"=dword:8", 7},
        {"\"Number\"=dword:00000007\n\"Number\"=-", 5},
        {"\"Number\"=dword:00000007\n[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova]", 5},
        {"\"Number\"=dword:000000007", 5},
        {"\"Number\"=hex:07,00,00,00", 5},
        {"\"Number\"=hex(4):07,00,00,00,00", 5},
        {";\"Number\"=dword:00000007", 5},
        {"\"Number\\\"=dword:00000007", 5},
        {"\t\"Number\"=dword:00000007\t", 7},
        {"; comment=hex\\\n\"Number\"=dword:00000007", 7},
        {"\"Other\"=\"=hex\\\\\"\n\"Number\"=dword:00000007", 7},
        {"\"Number\"=hex(4):01,\\\n  02,\\\n  00,80", 0x80000201},
        {"\"Number\" = hex(4):01,02,\\\n  00,80 ; comment", 0x80000201},
        {"\"Number\"=dword: 7 ; comment", 7},
        {"\"Number\"=hex(4):001,02,00,00", 5},
        {"[other] ; comment\n\"Number\"=dword:00000007", 5},
        {"[other\n\"Number\"=dword:00000007", 5},
        {"[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM]\n\"Number\"=dword:00000007", 5},
        {"\"Number\"=dword:00000007\n[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM]", 5},
        {"\"Number\"=dword:00000007\n[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Kes]", 7},
        {"; " + std::string(10'000, 'x') + "\n\"Number\"=dword:00000007", 7},
        {"", 5},
    };
    for (const Case& each : cases) {
        writeFile(path, "REGEDIT4\n\n" + commonKey + each.lines);
        EXPECT_EQ(SPMRegistry().readNumber("Number", 5), each.number) << each.lines;
    }
}

TEST_F(SettingsFile, ReadsTexts) {
    struct Case {
        std::string value;
        std::string text;
    };
    const std::vector<Case> cases{
        {"\"USB\"", "USB"},
        {"\"\"", ""},
        {"\"C:\\\\a \\\"b\\\"\"", "C:\\a \"b\""},
        {"hex(1):41,42,00", "AB"},
        {"hex(1):4x,00", "default"},
        {"\"USB\" trailing", "default"},
        {"\"USB\" ; comment", "USB"},
        {"\"USB", "default"},
    };
    for (const Case& each : cases) {
        writeFile(path, "REGEDIT4\r\n" + commonKey + "\"Text\"=" + each.value + "\n[next]\n");
        EXPECT_EQ(SPMRegistry().readString("Text", "default"), each.text) << each.value;
    }
}

TEST_F(SettingsFile, CreatesKeysAndKeepsTheRest) {
    struct Case {
        std::string before;
        std::string after;
    };
    const std::string rest = "; a comment\r\n\"not a line";
    const std::string device = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM\\xrite i1 Pro3]\n";
    const std::vector<Case> cases{
        {"", "REGEDIT4\n" + headings + "\n" + device},
        {"REGEDIT4\n" + headings, "REGEDIT4\n" + headings + "\n" + device},
        {"REGEDIT4\n" + headings + device + rest, "REGEDIT4\n" + headings + device + rest},
        {"REGEDIT4\n" + headings + "text", "REGEDIT4\n" + headings + "text\n\n" + device},
        {"REGEDIT4\r\n[hkey_local_machine\\software\\KESTROVA\\SPM\\XRITE I1 PRO3]\r\n[x]\r\n" + rest,
         "REGEDIT4\r\n[hkey_local_machine\\software\\KESTROVA\\SPM\\XRITE I1 PRO3]\r\n[x]\r\n" + rest},
        {"REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM\\other]",
         "REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM\\other]"
         "\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM\\xrite i1 Pro3]\r\n"},
        {"REGEDIT4\n" + headings + "[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM]\n",
         "REGEDIT4\n" + headings + "[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM]\n\n" + commonKey + "\n" + device},
        {"REGEDIT42\n", "REGEDIT42\n"},
    };
    for (const Case& each : cases) {
        writeFile(path, each.before);
        for (int again = 0; again < 2; ++again) {
            const SPMRegistry deviceKey("xrite i1 Pro3");
            EXPECT_EQ(readFile(path), each.after);
        }
    }
}

TEST_F(SettingsFile, TellsWhyItCannotBeUsed) {
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE", 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    EXPECT_EQ(RegCreateKeyA(HKEY_LOCAL_MACHINE, "outside of SOFTWARE", &key), ERROR_ACCESS_DENIED);
    writeFile(path, "no settings");
    EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE", 0, KEY_READ, &key), ERROR_BADDB);
    const EnvironmentVariable missing("SPM_REGISTRY", (folder / "no such folder/settings.reg").string());
    EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE", 0, KEY_READ, &key), ERROR_ACCESS_DENIED);
}

TEST_F(SettingsFile, WaitsForWhoeverHoldsTheFile) {
    writeFile(path, "REGEDIT4\n" + commonKey + "\"Logging\"=dword:00000001\n");
    const SPMRegistry key;
    const std::vector<std::function<void()>> uses{
        [] { const SPMRegistry another("another"); },
        [&] { EXPECT_EQ(key.readNumber("Logging", 0), 1U); },
    };
    for (const auto& use : uses) {
        const int file = open(path.c_str(), O_RDWR);
        ASSERT_EQ(flock(file, LOCK_EX), 0);
        std::atomic<bool> done = false;
        std::thread user([&] {
            use();
            done = true;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_FALSE(done);
        close(file);
        user.join();
    }
}

TEST_F(SettingsFile, ManyProcessesCreateEachKeyOnce) {
    constexpr int processes = 8;
    constexpr int keys = 40;
    for (int process = 0; process < processes; ++process) {
        if (fork() != 0) continue;
        for (int i = 0; i < keys; ++i) {
            const SPMRegistry key("model " + std::to_string((i + process) % keys));
        }
        _exit(0);
    }
    for (int process = 0; process < processes; ++process) {
        int status = 0;
        wait(&status);
        EXPECT_EQ(status, 0);
    }
    std::vector<std::string> lines = linesOf(readFile(path));
    EXPECT_EQ(lines.size(), 1U + 2U * (2 + keys));
    std::erase(lines, "");
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(std::unique(lines.begin(), lines.end()), lines.end());
    for (int i = 0; i < keys; ++i) {
        const std::string line = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM\\model " + std::to_string(i) + "]";
        EXPECT_TRUE(std::binary_search(lines.begin(), lines.end(), line)) << line;
    }
}

TEST_F(SettingsFile, AFullDiskLeavesTheFileAsItWas) {
    const std::string before = "REGEDIT4\n" + commonKey + "\"Logging\"=dword:00000001\n";
    writeFile(path, before);
    rlimit earlier{};
    getrlimit(RLIMIT_FSIZE, &earlier);
    const rlimit full{before.size() + 10, earlier.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &full);
    { const SPMRegistry key("xrite i1 Pro3"); }
    setrlimit(RLIMIT_FSIZE, &earlier);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(readFile(path), before);
}

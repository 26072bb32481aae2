#include "module/SPMRegistry.h"
#include "tests/support/Support.h"

#include <barrier>
#include <gtest/gtest.h>
#include <set>
#include <sys/stat.h>
#include <thread>

namespace {

const std::string commonHeading = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM]\n";
const std::string headings = "\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova]\n\n" + commonHeading;

class SettingsFile : public testing::Test {
protected:
    TempFolder folder;
    std::filesystem::path path = folder / "settings.reg";
    EnvironmentVariable variable{"SPM_REGISTRY", path.string()};
};

} // namespace

TEST_F(SettingsFile, ReadsNumbers) {
    const std::string seven = "\"Number\"=dword:00000007\n";
    const std::vector<std::pair<std::string, std::uint32_t>> cases{
        {"\"number\"=dword:fffffffe", 0xFFFFFFFE},
        {"\t  \"NUMBER\" = dword: 7 ; comment \t\r", 7},
        {"\"Number\" = hex(4):01, 02,00,80 ; comment", 0x80000201},
        {seven + "\"Number\"=dword:8", 8},
        {seven + "[hkey_local_machine\\software\\kestrova\\spm] ; comment\n\"Number\"=dword:8", 8},
        {seven + "[other]\n\"Number\"=dword:8", 7},
        {seven + "[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM]\n\"Number\"=dword:8", 7},
        {seven + "\"Number\"=what is this", 7},
        {seven + "\"Number\"=-", 7},
        {seven + "\"Number\"=hex(4):01,\\\n  02,00,00", 7},
        {";" + seven, 5},
        {"\"Number\\" + seven.substr(7), 5},
        {"[other] ; comment\n" + seven, 5},
        {"[other\n" + seven, 7},
    };
    for (const auto& [lines, number] : cases) {
        writeFile(path, "REGEDIT4\n\n" + commonHeading + lines);
        EXPECT_EQ(SPMRegistry().readNumber("Number", 5), number) << lines;
    }
}

TEST_F(SettingsFile, ReadsTexts) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"\"\"", ""},
        {"\"C:\\\\a \\\"b\\\"\" ; comment", "C:\\a \"b\""},
        {"hex(1):41,42,00", "AB"},
        {"hex(1):4x,00", "default"},
        {"\"USB\" trailing", "default"},
        {"\"USB", "default"},
    };
    for (const auto& [value, text] : cases) {
        writeFile(path, "REGEDIT4\r\n" + commonHeading + "\"Text\"=" + value + "\n[next]\n");
        EXPECT_EQ(SPMRegistry().readString("Text", "default"), text) << value;
    }
}

TEST_F(SettingsFile, CreatesKeysAndKeepsEverythingElse) {
    const std::string device = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM\\xrite i1 Pro3]";
    const std::vector<std::pair<std::string, std::string>> cases{
        {"", "REGEDIT4\n" + headings + "\n" + device + "\n"},
        {"REGEDIT4\n" + headings, "\n" + device + "\n"},
        {"REGEDIT4\n" + headings + "text", "\n\n" + device + "\n"},
        {"REGEDIT4\r\n[hkey_local_machine\\software\\KESTROVA\\SPM\\XRITE I1 PRO3]\r\n[x]\r\n; a comment\r\n\"no", ""},
        {"REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM\\other]", "\r\n\r\n" + device + "\r\n"},
        {"REGEDIT4\n" + headings + "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM\\xrite", "\n\n" + device + "\n"},
        {"REGEDIT42\n", ""},
    };
    for (const auto& [before, added] : cases) {
        writeFile(path, before);
        for (int again = 0; again < 2; ++again) {
            const SPMRegistry modelKey("xrite i1 Pro3");
            EXPECT_EQ(readFile(path), before + added);
        }
    }
}

// The file is large, so that searching it for a key takes a while before the key is written. A key may get several
// headings.
TEST_F(SettingsFile, KeepsEveryLineWithConcurrentWriters) {
    const std::string before = "REGEDIT4\n" + headings + "; " + std::string(1'000'000, 'x') + "\n";
    writeFile(path, before);
    std::set<std::string> added{""};
    constexpr int writers = 4;
    std::barrier start(writers);
    std::vector<std::jthread> threads;
    for (char key = 'a'; key < 'a' + writers; ++key) {
        added.insert("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM\\" + std::string(1, key) + "]");
        threads.emplace_back([&start, key] {
            start.arrive_and_wait();
            const SPMRegistry created(std::string(1, key));
        });
    }
    threads.clear();
    const std::string after = readFile(path);
    ASSERT_TRUE(after.starts_with(before));
    const std::vector<std::string> lines = linesOf(after.substr(before.size()));
    EXPECT_EQ(std::set<std::string>(lines.begin(), lines.end()), added);
}

TEST_F(SettingsFile, IsNotWaitedForIfItIsAPipe) {
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(SPMRegistry().readNumber("Number", 5), 5U);
}

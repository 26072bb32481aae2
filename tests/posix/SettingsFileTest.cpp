#include "module/SPMRegistry.h"
#include "tests/support/Support.h"

#include <barrier>
#include <gtest/gtest.h>
#include <thread>

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
    const std::string seven = "\"Number\"=dword:00000007\n";
    const std::vector<Case> cases{
        {"\"number\"=dword:fffffffe", 0xFFFFFFFE},
        {"\t  \"NUMBER\" = dword: 7 ; comment \t\r", 7},
        {"\"Number\" = hex(4):01,\\\n  02,\\\n  00,80 ; comment", 0x80000201},
        {seven + "\"Number\"=dword:8", 8},
        {seven + "[hkey_local_machine\\software\\kestrova\\spm]\n\"Number\"=dword:8", 8},
        {seven + "\"Number\"=what is this", 7},
        {seven + "[other]\n\"Number\"=dword:8", 7},
        {seven + "\"Number\"=-", 5},
        {seven + "[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova]", 5},
        {seven + "[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Kes]", 7},
        {"[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM]\n" + seven, 5},
        {"\"Number\"=dword:000000007", 5},
        {seven + "\"Number\"=hex:00", 5},
        {"\"Number\"=hex(4):001,02,00,00", 5},
        {";" + seven, 5},
        {"\"Number\\" + seven.substr(7), 5},
        {"; comment=hex\\\n" + seven, 7},
        {"\"Other\"=\"=hex\\\\\"\n" + seven, 7},
        {"[other] ; comment\n" + seven, 5},
        {"[other\n" + seven, 5},
        {"; " + std::string(10'000, 'x') + "\n" + seven, 7},
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
        {"\"\"", ""},
        {"\"C:\\\\a \\\"b\\\"\" ; comment", "C:\\a \"b\""},
        {"hex(1):41,42,00", "AB"},
        {"hex(1):4x,00", "default"},
        {"\"USB\" trailing", "default"},
        {"\"USB", "default"},
    };
    for (const Case& each : cases) {
        writeFile(path, "REGEDIT4\r\n" + commonKey + "\"Text\"=" + each.value + "\n[next]\n");
        EXPECT_EQ(SPMRegistry().readString("Text", "default"), each.text) << each.value;
    }
}

TEST_F(SettingsFile, CreatesKeysAndKeepsEverythingElse) {
    struct Case {
        std::string before;
        std::string added;
    };
    const std::string device = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM\\xrite i1 Pro3]";
    const std::vector<Case> cases{
        {"", "REGEDIT4\n" + headings + "\n" + device + "\n"},
        {"REGEDIT4\n" + headings, "\n" + device + "\n"},
        {"REGEDIT4\n" + headings + "text", "\n\n" + device + "\n"},
        {"REGEDIT4\r\n[hkey_local_machine\\software\\KESTROVA\\SPM\\XRITE I1 PRO3]\r\n[x]\r\n; a comment\r\n\"no", ""},
        {"REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM\\other]", "\r\n\r\n" + device + "\r\n"},
        {"REGEDIT4\n" + headings + "[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM]\n",
         "\n" + commonKey + "\n" + device + "\n"},
        {"REGEDIT42\n", ""},
    };
    for (const Case& each : cases) {
        writeFile(path, each.before);
        for (int again = 0; again < 2; ++again) {
            const SPMRegistry deviceKey("xrite i1 Pro3");
            EXPECT_EQ(readFile(path), each.before + each.added);
        }
    }
}

// The file is large, so that searching it for a key takes a while before the key is written.
TEST_F(SettingsFile, CreatesEachKeyOnceWithConcurrentWriters) {
    const std::string before = "REGEDIT4\n" + headings + "; " + std::string(1'000'000, 'x') + "\n";
    writeFile(path, before);
    std::string added;
    for (char key = 'a'; key < 'e'; ++key) {
        added += "\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM\\" + std::string(1, key) + "]\n";
    }
    constexpr int writers = 4;
    std::barrier start(writers);
    std::vector<std::jthread> threads;
    for (int writer = 0; writer < writers; ++writer) {
        threads.emplace_back([&] {
            for (char key = 'a'; key < 'e'; ++key) {
                start.arrive_and_wait();
                const SPMRegistry created(std::string(1, key));
            }
        });
    }
    threads.clear();
    EXPECT_TRUE(readFile(path) == before + added) << readFile(path).substr(before.size());
}

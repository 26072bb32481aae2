// Access to a settings file that is locked, a pipe, large or damaged.

#include "module/SPMRegistry.h"
#include "tests/support/Support.h"

#include <ctime>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const std::string begin = "REGEDIT4\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM]\n";

class SettingsAccess : public testing::Test {
protected:
    TempFolder folder;
    std::filesystem::path path = folder / "settings.reg";
    EnvironmentVariable variable{"SPM_REGISTRY", path.string()};
};

} // namespace

TEST_F(SettingsAccess, ReadsButCreatesNoKeysWhileLocked) {
    const std::string text = begin + "\"Logging\"=dword:00000001\n";
    writeFile(path, text);
    const int other = open(path.c_str(), O_RDONLY);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    EXPECT_EQ(SPMRegistry().readNumber("Logging", 0), 1U);
    { const SPMRegistry another("another"); }
    EXPECT_EQ(readFile(path), text);
    close(other);
    { const SPMRegistry another("another"); }
    EXPECT_NE(readFile(path), text);
}

TEST_F(SettingsAccess, MustBeARegularFile) {
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const SPMRegistry key;
    EXPECT_EQ(key.readNumber("Logging", 5), 5U);
    std::filesystem::remove(path);
    writeFile(path, begin);
    const SPMRegistry held;
    std::filesystem::remove(path);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(held.readNumber("Logging", 5), 5U) << "and doesn't wait for a writer";
}

// Half of the file is one long name, the other half a byte list with many lines.
TEST_F(SettingsAccess, ReadsInLinearTime) {
    std::string text = begin + "\"" + std::string(200'000, 'x') + "\"=hex:\\\n";
    for (int i = 0; i < 100'000; ++i) {
        text += "\\\n";
    }
    writeFile(path, text + "\n\"Number\"=dword:7\n");
    const std::clock_t start = std::clock();
    EXPECT_EQ(SPMRegistry().readNumber("Number", 5), 7U);
    EXPECT_LT(std::clock() - start, 2 * CLOCKS_PER_SEC);
}

TEST_F(SettingsAccess, KeepsHeadingsOutOfByteLists) {
    for (const std::string end : {"\\", "\\\\", "\\\\\\\n", "\\\n\\\n"}) {
        writeFile(path, begin + "\"Bytes\"=hex:00," + end);
        { const SPMRegistry device("model"); }
        const std::string created = readFile(path);
        { const SPMRegistry device("model"); }
        EXPECT_EQ(readFile(path), created) << "the heading is found again: " << end;
    }
}

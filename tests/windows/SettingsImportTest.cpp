#include "module/SPMRegistry.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <cstdlib>
#include <gtest/gtest.h>

// The file that holds the settings elsewhere, imported into this test's place for HKEY_LOCAL_MACHINE.
TEST(SettingsImport, GivesWhatTheSettingsFileGives) {
    const Settings settings;
    const TempFolder folder;
    const std::string root = std::string("[HKEY_CURRENT_USER\\") + std::getenv("SPM_TEST_KEY") + "\\SOFTWARE\\";
    const std::filesystem::path file = folder / "settings.reg";
    writeFile(file, "REGEDIT4\r\n\r\n" + root + commonKey + "]\r\n\"Logging\"=dword:0000000a\r\n\r\n" + root +
                        deviceKey + "]\r\n\"Device\"=\"C:\\\\a \\\"b\\\"\"\r\n\"Hex\"=hex(1):41,42,\\\r\n  00\r\n");
    const std::filesystem::path regedit = std::filesystem::path(std::getenv("windir")) / "regedit.exe";
    ASSERT_EQ(run(regedit, {"/S", file.string()}, {folder / "out", folder / "err"}), 0);
    EXPECT_EQ(SPMRegistry().readNumber("Logging", 0), 10U);
    EXPECT_EQ(SPMRegistry("xrite i1 Pro3").readString("Device", ""), "C:\\a \"b\"");
    EXPECT_EQ(SPMRegistry("xrite i1 Pro3").readString("Hex", ""), "AB");
}

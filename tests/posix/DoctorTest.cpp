// Faults that exist only on POSIX: settings files, file permissions and LD_LIBRARY_PATH.

#include "common/Environment.h"
#include "common/LibraryNames.h"
#include "common/SharedLibrary.h"
#include "module/SPMRegistry.h"
#include "spm/doctor/Settings.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>

namespace fs = std::filesystem;

TEST(DoctorOnPosix, ExplainsWhySettingsHaveNoEffect) {
    const std::string begin = "REGEDIT4\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM]\n\"Logging\"=";
    const std::vector<std::array<std::string, 4>> cases{
        {"Windows Registry Editor Version 5.00\n", "Settings", " has the format of a newer version of regedit",
         "(REGEDIT4)\", or save"},
        {"\xFF\xFEW", "Settings", " is UTF-16 text, written by a newer version", "Win9x/NT4 Registration Files"},
        {"text\n" + begin + "dword:1", "Logging", " is ignored", "fix the settings file first"},
        {begin + "1", "Logging", " is ignored", "write it as \"Logging\"=dword:00000001"},
        {begin + "1\n\"Logging\"=-", "Logging", "0 by default, not set", ""},
    };
    const Settings settings;
    for (const auto& [content, subject, text, advice] : cases) {
        writeFile(SPMRegistry::place(), content);
        const std::vector<spm::Finding> findings = spm::examineSettings();
        const auto finding = std::ranges::find(findings, subject, &spm::Finding::subject);
        EXPECT_NE(finding->text.find(text), std::string::npos) << finding->text;
        EXPECT_NE(finding->advice.find(advice), std::string::npos) << finding->advice;
    }
}

TEST(DoctorOnPosix, ChecksTheSdkLibraryThatTheLoaderFinds) {
    const TempFolder folder;
    const EnvironmentVariable path("LD_LIBRARY_PATH", "/missing:" + (folder / "").string());
    const fs::path sdk = folder / common::sdkFileName;
    const fs::path built = common::programFolder() / common::sdkFileName;
    const auto spm = [&](const std::string& command) {
        run(common::programFolder() / "spm", {command}, {folder / "out", folder / "err"});
        return readText(folder / "out") + readText(folder / "err");
    };
    fs::copy_file(built, sdk);
    EXPECT_NE(spm("doctor").find("loaded because of LD_LIBRARY_PATH, instead of " + built.string()), std::string::npos);
    fs::resize_file(sdk, fs::file_size(sdk) / 2);
    EXPECT_NE(spm("doctor").find("WRONG  SDK library  can't load " + sdk.string() + ": it is truncated"),
              std::string::npos);
    EXPECT_NE(spm("measure").find("can't load the SDK library " + sdk.string() + ": it is truncated"),
              std::string::npos);
    writeFile(sdk, readFile(built).replace(4, 1, "\1"));
    EXPECT_NE(spm("doctor").find("note   SDK library  " + built.string()), std::string::npos) << "32 bits are skipped";
}

TEST(DoctorOnPosix, ReportsAnUnreadableLibrary) {
    const TempFolder folder;
    Settings settings;
    writeFile(folder / "library", "");
    fs::permissions(folder / "library", fs::perms::none);
    settings.denyWriting();
    EXPECT_TRUE(common::findFault(folder / "library")->text.ends_with(": it can't be read: Permission denied"));
}

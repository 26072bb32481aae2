// Faults that exist only on POSIX: settings files, file permissions and LD_LIBRARY_PATH.

#include "spm/doctor/Doctor.h"

#include "common/Environment.h"
#include "common/LibraryNames.h"
#include "common/SharedLibrary.h"
#include "platform/RegistryPlace.h"
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
        {"Windows Registry Editor Version 5.00\n", "Settings", " does not start with the line REGEDIT4",
         "REGEDIT4)\", or"},
        {begin + "1", "Logging", "0 by default: line 3 of ", "write \"Logging\"=dword:00000001 below [HKEY"},
        {"REGEDIT4\nlogging=dword:1", "Logging", "0 by default: line 2 of ", "write "},
        {begin + "dword:1\n\"Loging\"=dword:1", "Unknown", "does not read Loging in HKEY", "correct its name"},
    };
    const Settings settings;
    for (const auto& [content, subject, text, advice] : cases) {
        writeFile(registryPlace(), content);
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
    for (const std::uintmax_t size : {fs::file_size(sdk) / 2, std::uintmax_t{5}}) {
        fs::resize_file(sdk, size);
        const std::string findings = spm("doctor");
        EXPECT_NE(findings.find("WRONG  SDK library  can't load " + sdk.string()), std::string::npos) << findings;
        EXPECT_NE(findings.find("LD_LIBRARY_PATH is set"), std::string::npos) << findings;
        EXPECT_EQ(findings.find("WRONG  Module"), std::string::npos) << "one fault, one line";
        EXPECT_NE(spm("measure").find(sdk.string()), std::string::npos);
    }
}

TEST(DoctorOnPosix, NamesAMissingFolderAndADanglingLink) {
    const TempFolder folder;
    const EnvironmentVariable registry("SPM_REGISTRY", (folder / "missing/settings.reg").string());
    EXPECT_NE(spm::examineSettings().front().text.find((folder / "missing").string() + " is missing"),
              std::string::npos);
    fs::create_symlink("nowhere", folder / common::moduleFileName);
    EXPECT_NE(spm::examine(folder / common::moduleFileName).front().text.find("is a link to nowhere, which is missing"),
              std::string::npos);
}

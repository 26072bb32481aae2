// What only a settings file, file rights and LD_LIBRARY_PATH can do to an installation.

#include "common/System.h"
#include "module/SPMRegistry.h"
#include "spm/doctor/Settings.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

class DoctorOnPosix : public testing::Test {
protected:
    DoctorOnPosix() { fs::copy_file(common::programFolder() / common::moduleFileName, module); }

    /// Runs spm on the module with another SDK library on the path, and gives what it says.
    std::string spm(const std::string& command, const fs::path& sdkFolder) const {
        const EnvironmentVariable path("LD_LIBRARY_PATH", "/missing:" + sdkFolder.string());
        run(common::programFolder() / "spm", {command, "--module", module.string()}, {folder / "out", folder / "out"});
        return readText(folder / "out");
    }

    TempFolder folder;
    Settings settings;
    const fs::path module = folder / common::moduleFileName;
    const fs::path sdk = folder / common::sdkFileName;
};

} // namespace

TEST_F(DoctorOnPosix, SaysWhyTheSettingsFileHasNoEffect) {
    const std::string begin = "REGEDIT4\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM]\n";
    const std::vector<std::vector<std::string>> cases{
        {"Windows Registry Editor Version 5.00\n", "Settings", " has the form of a newer regedit",
         "(REGEDIT4)\", or save"},
        {"\xFF\xFEW", "Settings", " is UTF-16 text of a newer regedit", "Win9x/NT4 Registration Files"},
        {"\xEF\xBB\xBF" + begin, "Settings", " begins with a byte order mark", "single-byte text"},
        {"text", "Settings", " does not begin with the line REGEDIT4", "REGEDIT4"},
        {"text" + begin + "\"Details\"=dword:1\n", "Details", " is ignored", "fix the settings file first"},
        {begin + "\"Logging\"=1\n", "Logging", "it can't be understood", "write the line \"Logging\"=dword:00000001"},
        {begin + "\"logging\"=dword:1\n", "Logging", "1, from HKEY_LOCAL", ""},
        {begin + "\"Logging\"=1\n\"Logging\"=-\n", "Logging", "0 by default, not set", ""},
        {"REGEDIT4\n[HKEY_CURRENT_USER\\SOFTWARE\\Kestrova\\SPM]\n\"Detials\"=1\n", "Unknown",
         "\"Detials\" in HKEY_CURRENT", "\"Details\" in HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM"},
        {"REGEDIT4\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Other\\Program]\n\"Logging\"=1\n", "Logging", "not set", ""},
    };
    for (const std::vector<std::string>& each : cases) {
        writeFile(SPMRegistry::place(), each[0]);
        const std::vector<spm::Finding> findings = spm::examineSettings();
        const auto finding = std::ranges::find(findings, each[1], &spm::Finding::subject);
        ASSERT_NE(finding, findings.end()) << each[0];
        EXPECT_NE(finding->text.find(each[2]), std::string::npos) << finding->text;
        EXPECT_NE(finding->advice.find(each[3]), std::string::npos) << finding->advice;
        EXPECT_EQ(findings.size(), each[1] == "Unknown" ? 5U : 4U) << each[0];
    }
}

TEST_F(DoctorOnPosix, LooksAtTheSdkThatTheLoaderTakes) {
    const fs::path other = folder / "other" / common::sdkFileName;
    fs::create_directory(other.parent_path());
    fs::copy_file(common::programFolder() / common::sdkFileName, sdk);
    fs::copy_file(sdk, other);
    const std::string found = spm("doctor", other.parent_path());
    EXPECT_NE(found.find("note   SDK library  " + other.string()), std::string::npos) << found;
    EXPECT_NE(found.find("in place of " + sdk.string() + ", because LD_LIBRARY_PATH"), std::string::npos) << found;
    fs::resize_file(other, fs::file_size(other) / 2);
    for (const std::string command : {"doctor", "measure"}) {
        const std::string failure = spm(command, other.parent_path());
        EXPECT_NE(failure.find(other.string() + ": it is cut short"), std::string::npos) << command << failure;
    }
    writeFile(other, readFile(sdk).replace(4, 1, "\1"));
    const std::string passedOver = spm("doctor", other.parent_path());
    EXPECT_NE(passedOver.find("note   SDK library  " + sdk.string()), std::string::npos) << "32 bits: " << passedOver;
}

TEST_F(DoctorOnPosix, TellsThatALibraryCannotBeRead) {
    fs::permissions(module, fs::perms::none);
    settings.forbid();
    try {
        common::requireLibrary(module);
        ADD_FAILURE();
    } catch (const common::LoadError& error) {
        EXPECT_EQ(error.what(), module.string() + ": it can't be read: Permission denied");
        EXPECT_EQ(error.advice.find("give this user the right to read it"), 0U);
    }
}

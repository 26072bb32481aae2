#include "common/Environment.h"
#include "common/LibraryNames.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

// spm, the module and the SDK library are in separate folders. That of the SDK library is the working folder and on the
// path.
TEST(SafeLoading, LoadsTheSdkOnlyFromTheModulesFolder) {
    const TempFolder folder;
    const fs::path module = folder / "module" / common::moduleFileName;
    const EnvironmentVariable path("PATH", (folder / "planted").string() + ";" + std::getenv("PATH"));
    const auto plant = [&](const std::string& name, const std::string& file) {
        fs::create_directory(folder / name);
        fs::copy_file(common::programFolder() / file, folder / name / file);
    };
    const auto measure = [&] {
        return run(folder / "program" / "spm.exe", {"measure", "--module", module.string()},
                   {folder / "out", folder / "err"});
    };
    plant("program", "spm.exe");
    plant("module", common::moduleFileName);
    plant("planted", common::sdkFileName);
    const fs::path earlier = fs::current_path();
    fs::current_path(folder / "planted");
    EXPECT_EQ(measure(), 1) << "loaded from the working folder or the path";
    const std::string errors = readText(folder / "err");
    EXPECT_NE(errors.find(module.string()), std::string::npos) << errors;
    EXPECT_NE(errors.find(" (error 126); "), std::string::npos) << errors;
    plant("program", common::sdkFileName);
    EXPECT_EQ(measure(), 1) << "loaded from the program's folder";
    plant("module", common::sdkFileName);
    EXPECT_EQ(measure(), 0) << readText(folder / "err");
    fs::current_path(earlier);
}

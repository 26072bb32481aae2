#include "common/Environment.h"
#include "common/LibraryNames.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

/// Puts spm, the module and the SDK library in separate folders. That of the SDK library is the working folder and on
/// the path.
class SafeLoading : public testing::Test {
protected:
    SafeLoading() {
        for (const char* name : {"program", "module", "planted"}) {
            fs::create_directory(folder / name);
        }
        fs::copy_file(common::programFolder() / "spm.exe", folder / "program" / "spm.exe");
        fs::copy_file(common::programFolder() / common::moduleFileName, module);
        plant("planted");
        fs::current_path(folder / "planted");
    }
    ~SafeLoading() override { fs::current_path(earlier); }

    void plant(const std::string& name) {
        fs::copy_file(common::programFolder() / common::sdkFileName, folder / name / common::sdkFileName);
    }

    int measure() {
        return run(folder / "program" / "spm.exe", {"measure", "--module", module.string()},
                   {folder / "out", folder / "err"});
    }

    std::string errors() const { return readText(folder / "err"); }

    const fs::path earlier = fs::current_path();
    TempFolder folder;
    const fs::path module = folder / "module" / common::moduleFileName;
    EnvironmentVariable path{"PATH", (folder / "planted").string() + ";" + std::getenv("PATH")};
};

} // namespace

TEST_F(SafeLoading, LoadsTheSdkOnlyFromTheModulesFolder) {
    EXPECT_EQ(measure(), 1) << "loaded from the working folder or the path";
    EXPECT_NE(errors().find(module.string()), std::string::npos) << errors();
    EXPECT_NE(errors().find(" (error 126); "), std::string::npos) << errors();
    plant("program");
    EXPECT_EQ(measure(), 1) << "loaded from the program's folder";
    plant("module");
    EXPECT_EQ(measure(), 0) << errors();
}

#include "tests/boundary/ModuleTest.h"

namespace fs = std::filesystem;

TEST(Lifecycle, LoadsUsesAndUnloadsTenTimes) {
    const TempFolder folder;
    const LoggingOn settings;
    const fs::path file = installModule(folder);
    for (int i = 0; i < 10; ++i) {
        ASSERT_FALSE(isLoaded(file));
        const host::Module module(file);
        SPM_HANDLE const handle = module.create();
        EXPECT_TRUE(module.open(handle, "USB"));
        EXPECT_EQ(module.getVersion(nullptr), 3U);
        module.destroy(handle);
        EXPECT_TRUE(isLoaded(file));
        EXPECT_TRUE(fs::remove(folder / "spm_i1pro3.log")) << "Windows refuses while it is open";
    }
    EXPECT_FALSE(isLoaded(file));
}

TEST(Lifecycle, LogsBesideTheModuleWhateverItsName) {
    struct Case {
        std::string module;
        std::string log;
    };
    const TempFolder folder;
    const LoggingOn settings;
    const fs::path original = installModule(folder);
    const std::string extension = fs::path(host::moduleFileName).extension().string();
    // The longest path that the module can tell has 259 characters.
    const std::size_t left = 259 - (folder / "").string().size() - 101;
    const std::string subfolder = std::string(100, 'd') + '/';
    const std::string longest = subfolder + std::string(left - extension.size(), 'm');
    const std::string tooLong = subfolder + std::string(left - extension.size() + 1, 'n') + extension;
    const std::vector<Case> cases{
        {"v1.2/module", "v1.2/module.log"},
        {"v1.2/module.1" + extension, "v1.2/module.1.log"},
        {longest + extension, longest + ".log"},
        {tooLong, ""},
    };
    for (const Case& each : cases) {
        const fs::path file = folder / each.module;
        fs::create_directories(file.parent_path());
        fs::copy_file(original, file);
        const fs::path sdk = file.parent_path() / host::sdkFileName;
        if (!fs::exists(sdk)) fs::copy_file(folder / host::sdkFileName, sdk);
        const host::Module module(file);
        module.destroy(module.create());
        EXPECT_EQ(module.getVersion(nullptr), each.log.empty() ? 0U : 3U) << each.module;
        EXPECT_TRUE(each.log.empty() || fs::remove(folder / each.log)) << each.log;
        for (const auto& entry : fs::directory_iterator(file.parent_path())) {
            EXPECT_NE(entry.path().extension(), ".log") << entry.path();
        }
    }
}

#include "common/LibraryNames.h"
#include "common/SharedLibrary.h"
#include "tests/boundary/ModuleTest.h"

namespace fs = std::filesystem;

TEST(Lifecycle, LoadsUsesAndUnloadsTenTimes) {
    const TempFolder folder;
    const LoggingOn settings;
    const fs::path file = installModule(folder);
    for (int i = 0; i < 10; ++i) {
        std::optional<spm::Module> module(file);
        const void* const function = reinterpret_cast<const void*>(module->create);
        EXPECT_EQ(common::fileOf(function).filename(), file.filename());
        SPM_HANDLE const handle = module->create();
        EXPECT_TRUE(module->open(handle, "USB"));
        module->destroy(handle);
        EXPECT_TRUE(fs::remove(folder / "spm_i1pro3.log")) << "Windows can't remove an open file";
        module.reset();
        ASSERT_EQ(common::fileOf(function), "") << "still loaded";
    }
}

TEST(Lifecycle, LogsBesideTheModuleWhateverItsName) {
    const TempFolder folder;
    const LoggingOn settings;
    const fs::path original = installModule(folder);
    const std::string extension = original.extension().string();
    const fs::path place = folder / "v1.2";
    fs::create_directory(place);
    fs::copy_file(folder / common::sdkFileName, place / common::sdkFileName);
    // The module supports paths of up to 259 characters.
    const std::size_t left = 259 - (place / "").string().size() - extension.size();
    const std::vector<std::pair<std::string, std::string>> cases{
        // the module's name and its log's; empty: none
        {"module", "module.log"},
        {"module.1" + extension, "module.1.log"},
        {std::string(left, 'm') + extension, std::string(left, 'm') + ".log"},
        {std::string(left + 1, 'n') + extension, ""},
    };
    for (const auto& [name, log] : cases) {
        fs::copy_file(original, place / name);
        const spm::Module module(place / name);
        module.destroy(module.create());
        EXPECT_EQ(module.getVersion(nullptr), log.empty() ? 0U : MODULE_VERSION) << name;
        EXPECT_TRUE(log.empty() || fs::remove(place / log)) << log;
        for (const auto& entry : fs::directory_iterator(place)) {
            EXPECT_NE(entry.path().extension(), ".log") << entry.path();
        }
    }
}

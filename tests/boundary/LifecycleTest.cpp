#include "tests/boundary/ModuleTest.h"

#include <dlfcn.h>

namespace {

bool isLoaded(const std::filesystem::path& library) {
    void* const loaded = dlopen(library.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (loaded != nullptr) dlclose(loaded);
    return loaded != nullptr;
}

} // namespace

TEST(Lifecycle, LoadsUsesAndUnloadsTenTimes) {
    const TempFolder folder;
    const EnvironmentVariable settings("SPM_REGISTRY", (folder / "settings.reg").string());
    for (int i = 0; i < 10; ++i) {
        ASSERT_FALSE(isLoaded(MODULE_FILE));
        const host::Module module(MODULE_FILE);
        SPM_HANDLE const handle = module.create();
        EXPECT_TRUE(module.open(handle, "USB"));
        EXPECT_EQ(module.getVersion(nullptr), 3U);
        module.destroy(handle);
        EXPECT_TRUE(isLoaded(MODULE_FILE));
    }
    EXPECT_FALSE(isLoaded(MODULE_FILE));
}

TEST(Lifecycle, FindsItsFileByARelativeNameFromAnotherFolder) {
    const TempFolder folder;
    for (const std::filesystem::path file : {MODULE_FILE, SDK_FILE}) {
        std::filesystem::copy_file(file, folder / file.filename().string());
    }
    const std::filesystem::path earlier = std::filesystem::current_path();
    std::filesystem::current_path(folder / "");
    void* const library = dlopen("./spm_i1pro3.so", RTLD_NOW);
    std::filesystem::current_path(earlier);
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_EQ(reinterpret_cast<SPM_getVersion_t>(dlsym(library, "SPM_getVersion"))(nullptr), 3U);
    dlclose(library);
}

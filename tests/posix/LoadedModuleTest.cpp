// The built module, loaded by dlopen.

#include "tests/boundary/ModuleTest.h"

#include <dlfcn.h>

using LoadedModule = ModuleTest;

TEST_F(LoadedModule, LeavesNoFileOpen) {
    const auto numberOfOpenFiles = [] {
        const std::filesystem::directory_iterator files("/proc/self/fd");
        return std::distance(begin(files), end(files));
    };
    const std::ptrdiff_t before = numberOfOpenFiles();
    SPM_HANDLE const other = module.create();
    module.open(other, "USB");
    EXPECT_GT(numberOfOpenFiles(), before) << "open files are counted";
    module.destroy(other);
    EXPECT_EQ(numberOfOpenFiles(), before);
}

TEST(LoadedModuleFile, IsFoundAfterLoadingByARelativePath) {
    const TempFolder folder;
    const std::filesystem::path file = installModule(folder);
    const std::filesystem::path earlier = std::filesystem::current_path();
    std::filesystem::current_path(file.parent_path().parent_path());
    void* const library = dlopen(std::filesystem::relative(file).c_str(), RTLD_NOW);
    std::filesystem::current_path(earlier);
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_EQ(reinterpret_cast<SPM_getVersion_t>(dlsym(library, "SPM_getVersion"))(nullptr), 3U);
    dlclose(library);
}

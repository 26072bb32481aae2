#include "tests/boundary/ModuleTest.h"

#include <dlfcn.h>

namespace {

bool isLoaded(const std::filesystem::path& library) {
    void* const loaded = dlopen(library.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (loaded != nullptr) dlclose(loaded);
    return loaded != nullptr;
}

std::ptrdiff_t numberOfOpenFiles() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return std::distance(begin(files), end(files));
}

} // namespace

TEST(Lifecycle, LoadsUsesAndUnloadsTenTimes) {
    const TempFolder folder;
    const EnvironmentVariable settings("SPM_REGISTRY", (folder / "settings.reg").string());
    const std::filesystem::path file = installModule(folder);
    const std::ptrdiff_t filesOpen = numberOfOpenFiles();
    for (int i = 0; i < 10; ++i) {
        ASSERT_FALSE(isLoaded(file));
        const host::Module module(file);
        SPM_HANDLE const handle = module.create();
        EXPECT_TRUE(module.open(handle, "USB"));
        EXPECT_EQ(module.getVersion(nullptr), 3U);
        module.destroy(handle);
        EXPECT_TRUE(isLoaded(file));
    }
    EXPECT_FALSE(isLoaded(file));
    EXPECT_EQ(numberOfOpenFiles(), filesOpen);
}

TEST(Lifecycle, LogsBesideTheModuleWhateverItsName) {
    struct Case {
        std::string module;
        std::string log;
    };
    const TempFolder folder;
    const EnvironmentVariable settings("SPM_REGISTRY", (folder / "settings.reg").string());
    const std::filesystem::path original = installModule(folder);
    const std::size_t left = 259 - (folder / "").string().size();
    const std::string longest = std::string(200, 'd') + '/' + std::string(left - 201 - 3, 'm') + ".so";
    const std::string tooLong = std::string(200, 'd') + '/' + std::string(left - 201 - 2, 'n') + ".so";
    const std::vector<Case> cases{
        {"v1.2/module", "v1.2/module.log"},
        {"v1.2/module.1.so", "v1.2/module.1.log"},
        {longest, longest.substr(0, longest.size() - 3) + ".log"},
        {tooLong, ""},
    };
    for (const Case& each : cases) {
        const std::filesystem::path file = folder / each.module;
        std::filesystem::create_directories(file.parent_path());
        std::filesystem::copy_file(original, file);
        std::filesystem::copy_file(SDK_FILE, file.parent_path() / std::filesystem::path(SDK_FILE).filename(),
                                   std::filesystem::copy_options::skip_existing);
        const host::Module module(file);
        module.destroy(module.create());
        EXPECT_EQ(module.getVersion(nullptr), each.log.empty() ? 0U : 3U) << each.module;
        EXPECT_TRUE(each.log.empty() || std::filesystem::exists(folder / each.log)) << each.log;
        if (!each.log.empty()) std::filesystem::remove(folder / each.log);
        for (const auto& entry : std::filesystem::directory_iterator(file.parent_path())) {
            EXPECT_NE(entry.path().extension(), ".log") << entry.path();
        }
    }
}

TEST(Lifecycle, FindsItsFileByARelativeNameFromAnotherFolder) {
    const TempFolder folder;
    installModule(folder);
    const std::filesystem::path earlier = std::filesystem::current_path();
    std::filesystem::current_path(folder / "");
    void* const library = dlopen("./spm_i1pro3.so", RTLD_NOW);
    std::filesystem::current_path(earlier);
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_EQ(reinterpret_cast<SPM_getVersion_t>(dlsym(library, "SPM_getVersion"))(nullptr), 3U);
    dlclose(library);
}

// The built module, loaded by dlopen.

#include "tests/boundary/ModuleTest.h"

#include <dlfcn.h>
#include <future>

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

// Each object opens the file itself, as separate processes do.
TEST_F(LoadedModule, KeepsLogLinesOfConcurrentWritersWhole) {
    constexpr int writers = 8;
    constexpr int times = 10;
    const std::string text(20'000, 'x');
    sdk.use(R"({"faults": [{"function": "I1PRO3_GetDevices", "times": "always", "result": 9},
        {"function": "I1PRO3_GetGlobalOption", "times": "always", "output": ")" +
            text + R"("}]})");
    std::vector<std::future<void>> ends;
    for (int writer = 0; writer < writers; ++writer) {
        ends.push_back(std::async(std::launch::async, [&] {
            RecordingListener recorder;
            SPM_HANDLE const other = module.create();
            other->AddListener(&recorder);
            for (int i = 0; i < times; ++i) {
                module.open(other, "USB");
            }
            module.destroy(other);
        }));
    }
    ends.clear(); // waits for them
    const std::string message = "] M7 E1539: " + text + "\nErrorNumber: " + text + "\n2";
    std::string written = readText(logFile());
    int whole = 0;
    for (; written.find(message) != std::string::npos; ++whole) {
        written.erase(0, written.find(message) + message.size());
    }
    EXPECT_EQ(whole, writers * times);
}

TEST(LoadedModuleFile, IsFoundAfterLoadingByARelativePath) {
    const TempFolder folder;
    const std::filesystem::path file = installModule(folder);
    const std::filesystem::path earlier = std::filesystem::current_path();
    std::filesystem::current_path(file.parent_path().parent_path());
    void* const library = dlopen(std::filesystem::relative(file).c_str(), RTLD_NOW);
    std::filesystem::current_path(earlier);
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_EQ(reinterpret_cast<SPM_getVersion_t>(dlsym(library, "SPM_getVersion"))(nullptr), MODULE_VERSION);
    dlclose(library);
}

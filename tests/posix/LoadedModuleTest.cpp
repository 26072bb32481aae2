// The module where libraries are ELF files and a disk's end can be set.

#include "tests/boundary/ModuleTest.h"

#include <csignal>
#include <dlfcn.h>
#include <sys/resource.h>

namespace {

class LoadedModule : public ModuleTest {};

/// What a command prints.
std::string outputOf(const std::string& command) {
    std::string output;
    FILE* const pipe = popen(command.c_str(), "r");
    std::array<char, 256> part{};
    while (fgets(part.data(), part.size(), pipe) != nullptr) {
        output += part.data();
    }
    EXPECT_EQ(pclose(pipe), 0) << command;
    return output;
}

std::ptrdiff_t numberOfOpenFiles() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return std::distance(begin(files), end(files));
}

} // namespace

TEST_F(LoadedModule, ExportsExactlyTheSixteenFunctions) {
    Texts exported = linesOf(outputOf("nm -D --defined-only --format=just-symbols '" + moduleFile().string() + "'"));
    Texts listed = linesOf(readFile(EXPORT_LIST));
    EXPECT_EQ(listed.size(), 16U);
    std::sort(exported.begin(), exported.end());
    std::sort(listed.begin(), listed.end());
    EXPECT_EQ(exported, listed);
}

TEST_F(LoadedModule, LeavesNoFileOpen) {
    const std::ptrdiff_t before = numberOfOpenFiles();
    for (int i = 0; i < 2; ++i) {
        SPM_HANDLE const other = module.create();
        module.open(other, "USB");
        EXPECT_GT(numberOfOpenFiles(), before) << "the count counts";
        module.destroy(other);
        EXPECT_EQ(numberOfOpenFiles(), before);
    }
}

TEST_F(LoadedModule, MeasuresOnAFullDisk) {
    prepare();
    const std::string before = readFile(logFile());
    const std::size_t room = 30; // for a part of a line
    rlimit earlier{};
    getrlimit(RLIMIT_FSIZE, &earlier);
    const rlimit full{before.size() + room, earlier.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &full);
    EXPECT_TRUE(module.open(handle, "USB"));
    sdk.answer({.function = "I1PRO3_SetOption", .result = 9});
    SPM_LAB lab{};
    int32_t count = 1;
    EXPECT_FALSE(module.read(handle, &lab, &count));
    setrlimit(RLIMIT_FSIZE, &earlier);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(listener.lines.size(), 1U);
    const std::size_t torn = before.size() + room;
    EXPECT_EQ(std::filesystem::file_size(logFile()), torn);
    module.close(handle);
    const std::string after = readFile(logFile()).substr(torn);
    EXPECT_TRUE(after.starts_with("\n2")) << "written again when there is room, on a line of its own: " << after;
    EXPECT_TRUE(after.ends_with("] M7 D: close\n")) << after;
}

TEST(LoadedModuleFile, IsFoundByARelativeNameFromAnotherFolder) {
    const TempFolder folder;
    const Settings settings;
    installModule(folder);
    const std::filesystem::path earlier = std::filesystem::current_path();
    std::filesystem::current_path(folder / "");
    void* const library = dlopen("./spm_i1pro3.so", RTLD_NOW);
    std::filesystem::current_path(earlier);
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_EQ(reinterpret_cast<SPM_getVersion_t>(dlsym(library, "SPM_getVersion"))(nullptr), 3U);
    dlclose(library);
}

// Writing to a full disk, simulated by a limit of the file size.

#include "cap/CAPLoggingFile.h"
#include "tests/support/Support.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace {

/// Runs an operation while no file can grow beyond a size.
template <class Operation>
void withSizeLimit(std::size_t size, Operation operation) {
    rlimit earlier{};
    getrlimit(RLIMIT_FSIZE, &earlier);
    const rlimit full{size, earlier.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &full);
    operation();
    setrlimit(RLIMIT_FSIZE, &earlier);
    std::signal(SIGXFSZ, handler);
}

} // namespace

TEST(FullDisk, LosesLogLinesUntilSpaceIsFree) {
    const TempFolder folder;
    const std::string path = (folder / "log").string();
    for (const std::size_t room : {0U, 30U}) {
        CAPLoggingFile file;
        file.OpenFile(path.c_str(), "w");
        file.LogText(0, 7, "first");
        const std::size_t size = readFile(path).size();
        withSizeLimit(size + room, [&] {
            file.LogText(0, 7, "lost");
            file.LogText(0, 7, "lost");
        });
        EXPECT_EQ(readFile(path).size(), size + room);
        file.LogText(0, 7, "kept");
        file.LogText(0, 7, "kept");
        const std::string after = readFile(path).substr(size + room);
        EXPECT_TRUE(after.starts_with("2")) << after;
        EXPECT_EQ(linesOf(after).size(), 2U) << after;
    }
}

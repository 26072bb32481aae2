// The lock of a log file, and that child processes don't inherit the file.

#include "platform/LogStream.h"

#include "platform/win32.h"
#include "tests/support/Support.h"

#include <chrono>
#include <gtest/gtest.h>

namespace {

HANDLE handleOf(std::FILE* stream) {
    return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
}

} // namespace

TEST(LogStream, WritesEvenIfAnotherWriterKeepsTheLock) {
    const TempFolder folder;
    const std::string path = (folder / "log").string();
    std::FILE* const stream = openLogStream(path.c_str(), "a");
    std::FILE* const other = std::fopen(path.c_str(), "a");
    OVERLAPPED place{};
    place.OffsetHigh = 0x7FFFFFFF;
    ASSERT_NE(LockFileEx(handleOf(other), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place), FALSE);
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(appendText(stream, "line\n"), Written::all);
    }
    const auto waited = std::chrono::steady_clock::now() - begin;
    EXPECT_GT(waited, std::chrono::milliseconds(50)) << "each line waits for the lock first";
    EXPECT_LT(waited, std::chrono::seconds(1));
    std::fclose(other);
    std::fclose(stream);
    EXPECT_EQ(linesOf(readText(path)).size(), 10U);
}

TEST(LogStream, IsNotInheritedByChildProcesses) {
    const TempFolder folder;
    std::FILE* const stream = openLogStream((folder / "log").string().c_str(), "a");
    DWORD flags = HANDLE_FLAG_INHERIT;
    ASSERT_NE(GetHandleInformation(handleOf(stream), &flags), FALSE);
    EXPECT_EQ(flags & HANDLE_FLAG_INHERIT, 0U);
    std::fclose(stream);
}

#include "platform/LogStream.h"

#include "tests/support/Support.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

TEST(LogStream, DoesNotWaitForTheReaderOfAFifo) {
    const TempFolder folder;
    const std::string pipe = (folder / "pipe").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(openLogStream(pipe.c_str(), "a"), nullptr);
}

TEST(LogStream, IsNotInheritedByChildProcesses) {
    const TempFolder folder;
    std::FILE* const stream = openLogStream((folder / "log").string().c_str(), "a");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(fcntl(fileno(stream), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    std::fclose(stream);
}

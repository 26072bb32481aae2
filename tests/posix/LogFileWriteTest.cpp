// How a log file's lines leave, seen over a pipe and a device.

#include "cap/CAPLoggingFile.h"
#include "tests/support/Support.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

// In packet mode, a read gives what one write gave.
TEST(LogFileWrite, TakesALineAtOnce) {
    const TempFolder folder;
    const std::string path = (folder / "pipe").string();
    CAPLoggingFile file;
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK);
    const int writer = dup(reader);
    close(writer); // the number that the file gets next
    file.OpenFile(path.c_str(), "a");
    ASSERT_EQ(fcntl(writer, F_SETFL, O_APPEND | O_DIRECT), 0);
    file.LogText(0, 7, "%s", std::string(1024, 'x').c_str());
    file.LogText(0, 7, "next");
    std::string packet(4096, '\0');
    packet.resize(static_cast<std::size_t>(read(reader, packet.data(), packet.size())));
    close(reader);
    EXPECT_TRUE(packet.ends_with("M7 E0: " + std::string(1024, 'x') + "\n")) << packet;
}

TEST(LogFileWrite, LosesALineThatDoesNotGetThrough) {
    const TempFolder folder;
    const std::string path = (folder / "a log.txt").string();
    CAPLoggingFile file;
    file.OpenFile("/dev/full", "a");
    file.LogText(0, 7, "lost");
    file.OpenFile(path.c_str(), "a");
    file.LogText(0, 7, "kept");
    EXPECT_EQ(linesOf(readText(path)).size(), 1U);
}

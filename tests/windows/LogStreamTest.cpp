#include "platform/LogStream.h"

#include "platform/win32.h"
#include "tests/support/Support.h"

#include <gtest/gtest.h>

TEST(LogStream, IsNotInheritedByChildProcesses) {
    const TempFolder folder;
    std::FILE* const stream = openLogStream((folder / "log").string().c_str(), "a");
    DWORD flags = HANDLE_FLAG_INHERIT;
    ASSERT_NE(GetHandleInformation(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))), &flags), FALSE);
    EXPECT_EQ(flags & HANDLE_FLAG_INHERIT, 0U);
    std::fclose(stream);
}

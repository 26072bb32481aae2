#include "module/CopyText.h"

#include <gtest/gtest.h>

TEST(CopyText, TruncatesAndFillsUpWithNuls) {
    struct Case {
        const char* source;
        int32_t size;
        std::string after;
    };
    const std::vector<Case> cases{
        {"abc", 6, std::string("abc\0\0\0xx", 8)},
        {"abc", 3, std::string("ab\0xxxxx", 8)},
        {"abc", 1, std::string("\0xxxxxxx", 8)},
        {nullptr, 4, std::string("\0xxxxxxx", 8)},
        {"abc", 0, "xxxxxxxx"},
        {"abc", -1, "xxxxxxxx"},
    };
    for (const Case& each : cases) {
        std::string buffer(8, 'x');
        copyText(each.source, {each.size, buffer.data()});
        EXPECT_EQ(buffer, each.after) << each.size;
    }
    copyText("abc", {4, nullptr});
}

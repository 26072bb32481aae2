#include "module/CopyText.h"

#include <gtest/gtest.h>

TEST(CopyText, TruncatesAndFillsUpWithNuls) {
    const std::vector<std::tuple<const char*, int32_t, std::string>> cases{
        {"abc", 6, std::string("abc\0\0\0xx", 8)},
        {"abc", 3, std::string("ab\0xxxxx", 8)},
        {"abc", 1, std::string("\0xxxxxxx", 8)},
        {nullptr, 4, std::string("\0xxxxxxx", 8)},
        {"abc", 0, "xxxxxxxx"},
        {"abc", -1, "xxxxxxxx"},
    };
    for (const auto& [source, size, after] : cases) {
        std::string buffer(8, 'x');
        copyText(source, {size, buffer.data()});
        EXPECT_EQ(buffer, after) << size;
    }
    copyText("abc", {4, nullptr});
}

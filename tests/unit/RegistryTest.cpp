#include "module/SPMRegistry.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

TEST(Registry, ReadsNumbersAndStrings) {
    constexpr DWORD expandedText = 2;
    constexpr DWORD binary = 3;
    const std::vector<std::tuple<DWORD, std::string, std::uint32_t, std::string>> cases{
        {REG_DWORD, "\1\2\0\x80"s, 0x80000201, "default"},
        {REG_DWORD, "\7\0\0\0\0"s, 5, "default"},
        {REG_DWORD, std::string(4, '\0'), 0, "default"},
        {binary, "ABC", 5, "default"},
        {expandedText, "ABC\0"s, 5, "default"},
        {REG_SZ, "USB\0"s, 5, "USB"},
        {REG_SZ, std::string(1023, 'x') + '\0', 5, std::string(1023, 'x')},
        {REG_SZ, std::string(1024, 'x') + '\0', 5, "default"},
        {REG_SZ, "ABC", 5, "AB"},
        {REG_SZ, "A", 5, ""},
        {REG_SZ, "", 5, "default"},
        {REG_SZ, "A\0C\0"s, 5, "A"},
    };
    Settings settings;
    const SPMRegistry key("xrite i1 Pro3");
    for (const auto& [type, data, number, text] : cases) {
        SCOPED_TRACE(data);
        settings.set(deviceKey, "Value", type, data);
        EXPECT_EQ(key.readNumber("value", 5), number);
        EXPECT_EQ(key.readString("value", "default"), text);
        EXPECT_EQ(SPMRegistry().readNumber("Value", 5), 5U) << "in another key";
    }
}

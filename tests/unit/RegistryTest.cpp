#include "module/SPMRegistry.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <set>

using namespace std::string_literals;

TEST(Registry, ReadsNumbersAndStrings) {
    constexpr DWORD expandedText = 2;
    constexpr DWORD binary = 3;
    struct Case {
        DWORD type;
        std::string data;
        std::uint32_t number;
        std::string text;
    };
    const std::vector<Case> cases{
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
    for (const Case& each : cases) {
        SCOPED_TRACE(&each - cases.data());
        settings.set(deviceKey, "Value", each.type, each.data);
        EXPECT_EQ(key.readNumber("value", 5), each.number);
        EXPECT_EQ(key.readString("value", "default"), each.text);
        EXPECT_EQ(SPMRegistry().readNumber("Value", 5), 5U) << "in another key";
    }
}

TEST(Registry, EnumeratesTheValuesOfAKey) {
    Settings settings;
    settings.setNumber("Number", 7);
    settings.set(commonKey, "Text", REG_SZ, "first\0"s);
    settings.set(commonKey, "text", REG_SZ, "ab\0"s);
    settings.set(deviceKey, "Other", REG_SZ, "ab\0"s);
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, ("SOFTWARE\\" + commonKey).c_str(), 0, KEY_READ, &key), ERROR_SUCCESS);
    std::set<std::pair<std::size_t, DWORD>> found; // length of the name and type
    std::array<char, 8> name{};
    DWORD length = 0;
    EXPECT_EQ(RegEnumValueA(key, 0, name.data(), &length, nullptr, nullptr, nullptr, nullptr), ERROR_MORE_DATA);
    for (DWORD index = 0; index < 2; ++index) {
        DWORD type = 0;
        length = name.size();
        EXPECT_EQ(RegEnumValueA(key, index, name.data(), &length, nullptr, &type, nullptr, nullptr), ERROR_SUCCESS);
        EXPECT_EQ(std::strlen(name.data()), length);
        found.emplace(length, type);
    }
    EXPECT_EQ(found, (std::set<std::pair<std::size_t, DWORD>>{{6, REG_DWORD}, {4, REG_SZ}}));
    length = name.size();
    EXPECT_EQ(RegEnumValueA(key, 2, name.data(), &length, nullptr, nullptr, nullptr, nullptr), ERROR_NO_MORE_ITEMS);
    RegCloseKey(key);
}

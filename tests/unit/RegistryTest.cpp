#include "module/SPMRegistry.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <gtest/gtest.h>

namespace {

constexpr DWORD expandedText = 2;
constexpr DWORD manyTexts = 7;

class Registry : public testing::Test {
protected:
    Settings settings;
};

std::string stored(const std::string& text) {
    return text + '\0';
}

std::string bytes(std::initializer_list<char> values) {
    return {values};
}

} // namespace

TEST_F(Registry, ReadsNumbers) {
    struct Case {
        DWORD type;
        std::string data;
        std::uint32_t number;
    };
    const std::vector<Case> cases{
        {REG_DWORD, bytes({7, 0, 0, 0}), 7},
        {REG_DWORD, bytes({-2, -1, -1, -1}), 0xFFFFFFFE},
        {REG_DWORD, bytes({1, 2, 0, -128}), 0x80000201},
        {REG_DWORD, bytes({7, 0, 0, 0, 0}), 5},
        {REG_DWORD, bytes({0, 0, 0, 0}), 0},
        {REG_SZ, stored("7"), 5},
        {REG_BINARY, bytes({7, 0, 0, 0}), 5},
    };
    for (const Case& each : cases) {
        settings.set(commonKey, "Number", each.type, each.data);
        EXPECT_EQ(SPMRegistry().readNumber("number", 5), each.number) << (&each - cases.data());
    }
    EXPECT_EQ(SPMRegistry().readNumber("Missing", 5), 5U);
}

TEST_F(Registry, ReadsTexts) {
    struct Case {
        DWORD type;
        std::string data;
        std::string text;
    };
    const std::vector<Case> cases{
        {REG_SZ, stored("USB"), "USB"},
        {REG_SZ, stored(""), ""},
        {REG_SZ, stored(std::string(1023, 'x')), std::string(1023, 'x')},
        {REG_SZ, stored(std::string(1024, 'x')), "default"},
        {REG_SZ, "ABC", "AB"},
        {REG_SZ, "A", ""},
        {REG_SZ, "", "default"},
        {REG_SZ, stored(stored("A") + "C"), "A"},
        {expandedText, stored("A"), "default"},
        {manyTexts, stored(stored("A")), "default"},
        {REG_DWORD, bytes({65, 0, 0, 0}), "default"},
    };
    for (const Case& each : cases) {
        settings.set(deviceKey, "Text", each.type, each.data);
        EXPECT_EQ(SPMRegistry("xrite i1 Pro3").readString("text", "default"), each.text) << (&each - cases.data());
    }
    EXPECT_EQ(SPMRegistry("xrite i1 Pro3").readString("Missing", "default"), "default");
}

TEST_F(Registry, CreatesKeysAndWritesNoValue) {
    for (int again = 0; again < 2; ++again) {
        const SPMRegistry key("xrite i1 Pro3");
        EXPECT_EQ(settings.keys(), (std::vector<std::string>{"Kestrova", commonKey, deviceKey}));
    }
    EXPECT_FALSE(settings.hasValues());
}

TEST_F(Registry, ReadsDefaultsWithoutRights) {
    settings.setNumber("Logging", 1);
    settings.forbid();
    const SPMRegistry key;
    EXPECT_EQ(key.readNumber("Logging", 5), 5U);
    EXPECT_EQ(key.readString("Device", "default"), "default");
    const SPMRegistry another("another");
    const std::vector<std::string> keys = settings.keys();
    EXPECT_EQ(std::count(keys.begin(), keys.end(), commonKey + "\\another"), 0);
}

TEST_F(Registry, SeesWhatChangesWhileAKeyIsOpen) {
    const SPMRegistry key;
    settings.setNumber("Logging", 1);
    EXPECT_EQ(key.readNumber("Logging", 0), 1U);
}

TEST_F(Registry, TellsMisuseByTheSystemsErrorCodes) {
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExA(nullptr, "SOFTWARE", 0, KEY_READ, &key), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\none", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWAREX", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegCloseKey(nullptr), ERROR_INVALID_HANDLE);
    ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "Software", 0, KEY_READ | KEY_WRITE, &key), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExA(key, "none", nullptr, nullptr, nullptr, nullptr), ERROR_FILE_NOT_FOUND);
    HKEY child = nullptr;
    ASSERT_EQ(RegCreateKeyA(key, "child", &child), ERROR_SUCCESS);
    settings.set("child", "Text", REG_SZ, stored("abc"));
    std::array<BYTE, 3> small{};
    DWORD size = small.size();
    EXPECT_EQ(RegQueryValueExA(child, "Text", nullptr, nullptr, small.data(), &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 4U);
    EXPECT_EQ(RegQueryValueExA(child, "Text", nullptr, nullptr, small.data(), nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegCloseKey(child), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
}

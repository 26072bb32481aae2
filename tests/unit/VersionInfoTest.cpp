#include "cap/BestTranslation.h"
#include "cap/CAPFileVersionInfo.h"
#include "common/Environment.h"
#include "common/LibraryNames.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <array>
#include <cstring>
#include <gtest/gtest.h>

namespace {

using Numbers = std::vector<DWORD>;

std::string builtLibrary(const std::string& name) {
    const std::filesystem::path module = common::programFolder() / common::moduleFileName;
    return (common::programFolder() / name).replace_extension(module.extension()).string();
}

Numbers partsOf(const CAPFileVersionInfo& info) {
    Numbers result;
    for (int i = -1; i <= 4; ++i) {
        result.push_back(info.getFileVersionPart(i));
    }
    return result;
}

} // namespace

TEST(VersionInfo, ReadsTheModulesResource) {
    const std::string module = (common::programFolder() / common::moduleFileName).string();
    CAPFileVersionInfo info;
    ASSERT_EQ(info.loadFromFile(module.c_str()), 1);
    EXPECT_EQ(partsOf(info), (Numbers{0, 3, 0, 9, 5, 0}));
    EXPECT_EQ(info.getComments(), nullptr);

    std::vector<char> block(GetFileVersionInfoSizeA(module.c_str(), nullptr));
    GetFileVersionInfoA(module.c_str(), 0, static_cast<DWORD>(block.size()), block.data());
    void* value = nullptr;
    UINT length = 0;
    ASSERT_NE(VerQueryValueA(block.data(), "\\", &value, &length), FALSE);
    Numbers fixedPart(13);
    ASSERT_EQ(length, sizeof(VS_FIXEDFILEINFO));
    std::memcpy(fixedPart.data(), value, length);
    constexpr DWORD fiveNine = 5 << 16 | 9;
    constexpr DWORD windows32 = 0x00040004;
    EXPECT_EQ(fixedPart, (Numbers{0xFEEF04BD, 0x10000, fiveNine, 3, fiveNine, 3, 0x3F, 0, windows32, 2, 0, 0, 0}));
    const std::vector<std::pair<std::string, std::string>> texts{
        {"CompanyName", "Kestrova"},
        {"FileDescription", "Spectrophotometer module for the i1Pro 3"},
        {"FileVersion", "5.9.0.3"},
        {"InternalName", "spm_i1pro3"},
        {"LegalCopyright", "Copyright Kestrova"},
        {"OriginalFileName", common::moduleFileName},
        {"ProductName", "Spectrophotometer modules"},
        {"ProductVersion", "5.9.0.3"},
    };
    for (const auto& [name, text] : texts) {
        const std::string path = "\\StringFileInfo\\040904B0\\" + name;
        ASSERT_NE(VerQueryValueA(block.data(), path.c_str(), &value, &length), FALSE) << name;
        EXPECT_EQ(static_cast<const char*>(value), text);
    }
}

TEST(VersionInfo, ReplacesWhatWasLoadedBefore) {
    const std::string versioned = builtLibrary("versioned");
    CAPFileVersionInfo info;
    for (const std::string& other : {builtLibrary("plain"), builtLibrary("no such file")}) {
        ASSERT_EQ(info.loadFromFile(versioned.c_str()), 1);
        EXPECT_EQ(partsOf(info), (Numbers{0, 4, 3, 2, 1, 0}));
        EXPECT_STREQ(info.getComments(), "English") << "the user's language or the second choice";
        EXPECT_EQ(info.loadFromFile(other.c_str()), 0);
        EXPECT_EQ(partsOf(info), Numbers(6));
        EXPECT_EQ(info.getComments(), nullptr);
    }
    ASSERT_EQ(info.loadFromFile(versioned.c_str()), 1);
    EXPECT_EQ(info.loadFromModule(reinterpret_cast<HMODULE>(&info)), 0);
    EXPECT_EQ(info.loadFromModule(reinterpret_cast<HMODULE>(&common::programFolder)), 0) << "not a base address";
    EXPECT_STREQ(info.getComments(), "English") << "unchanged";
}

TEST(VersionInfo, SelectsTheUsersLanguage) {
    const std::vector<std::pair<std::array<LANGID, 3>, LANGID>> cases{
        {{0x0409, 0x0C07, 0x0407}, 0x0407}, // the user's language
        {{0x0409, 0x0C07, 0x0807}, 0x0C07}, // the first with the same primary language
        {{0x0000, 0x0409, 0x0107}, 0x0107}, // the primary language is the low 8 bits
        {{0x0409, 0x0400, 0x0000}, 0x0000}, // the neutral language
        {{0x0009, 0x0400, 0x0409}, 0x0400}, // a neutral primary language
        {{0x040C, 0x0809, 0x0009}, 0x0009}, // English
        {{0x040C, 0x0809, 0x0409}, 0x0809}, // the first with English as primary language
        {{0x040C, 0x0410, 0x0411}, 0x040C}, // the first entry
    };
    constexpr LANGID german = 0x0407;
    for (const auto& [languages, chosen] : cases) {
        const auto& [a, b, c] = languages;
        const std::vector<Translation> table{{a, 1}, {b, 2}, {c, 3}};
        const Translation* const best = bestTranslation(table, german);
        ASSERT_NE(best, nullptr);
        EXPECT_EQ(best->language, chosen);
    }
    EXPECT_EQ(bestTranslation({}, german), nullptr);
}

#include "cap/CAPFileVersionInfo.h"
#include "host/System.h"
#include "tests/support/Support.h"
#include "tests/support/VersionedLibrary.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {

using Text = CAPFileVersionInfo::Text;
using version_block::Table;

const std::string modulePath = (host::programFolder() / host::moduleFileName).string();

class VersionInfo : public testing::Test {
protected:
    int load(const version_block::Block& resource) {
        writeLibrary(path, resource);
        return info.loadFromFile(path.c_str());
    }

    int loadComplete() {
        writeCompleteLibrary(path);
        return info.loadFromFile(path.c_str());
    }

    std::vector<int> parts() const {
        std::vector<int> result;
        for (int i = -1; i <= 4; ++i) {
            result.push_back(info.getFileVersionPart(i));
        }
        return result;
    }

    TempFolder folder;
    std::string path = (folder / "library").string();
    CAPFileVersionInfo info;
};

const std::vector<int> version1234{0, 4, 3, 2, 1, 0};
const std::vector<int> none(6);

/// The version data of a file, asked of the system.
class SystemsView {
public:
    explicit SystemsView(const std::string& path) : block(GetFileVersionInfoSizeA(path.c_str(), nullptr)) {
        GetFileVersionInfoA(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data());
    }

    std::string value(const std::string& path, UINT unit = 1) const {
        void* value = nullptr;
        UINT length = 0;
        if (VerQueryValueA(block.data(), path.c_str(), &value, &length) == FALSE) return "none";
        return {static_cast<const char*>(value), std::size_t{length} * unit};
    }

private:
    std::vector<char> block;
};

} // namespace

TEST_F(VersionInfo, ReadsTheModulesOwnFile) {
    ASSERT_EQ(info.loadFromFile(modulePath.c_str()), 1);
    EXPECT_EQ(parts(), (std::vector<int>{0, 3, 0, 9, 5, 0}));
    EXPECT_STREQ(info.getText(Text::fileVersion), "5.9.0.3");
    EXPECT_STREQ(info.getText(Text::productVersion), "5.9.0.3");
    EXPECT_STREQ(info.getText(Text::internalName), "spm_i1pro3");
    EXPECT_EQ(info.getComments(), nullptr);
}

TEST(ModulesResource, IsWhatTheSystemReads) {
    const SystemsView view(modulePath);
    const std::string fixedPart = view.value("\\");
    VS_FIXEDFILEINFO info{};
    ASSERT_EQ(fixedPart.size(), sizeof info);
    std::memcpy(&info, fixedPart.data(), sizeof info);
    constexpr DWORD fiveNine = 5 << 16 | 9;
    constexpr DWORD windows32 = 0x00040004;
    EXPECT_EQ(
        (std::vector<DWORD>{info.dwSignature, info.dwStrucVersion, info.dwFileVersionMS, info.dwFileVersionLS,
                            info.dwProductVersionMS, info.dwProductVersionLS, info.dwFileFlagsMask, info.dwFileFlags,
                            info.dwFileOS, info.dwFileType, info.dwFileSubtype, info.dwFileDateMS, info.dwFileDateLS}),
        (std::vector<DWORD>{0xFEEF04BD, 0x10000, fiveNine, 3, fiveNine, 3, 0x3F, 0, windows32, 2, 0, 0, 0}));
    EXPECT_EQ(view.value("\\VarFileInfo\\Translation"), "\x09\x04\xB0\x04");
    EXPECT_STREQ(view.value("\\StringFileInfo\\040904b0\\FileVersion").c_str(), "5.9.0.3");
    EXPECT_STREQ(view.value("\\StringFileInfo\\040904B0\\ProductVersion").c_str(), "5.9.0.3");
    EXPECT_STREQ(view.value("\\StringFileInfo\\040904b0\\OriginalFilename").c_str(), host::moduleFileName);
    EXPECT_EQ(view.value("\\StringFileInfo\\040904b0\\Comments"), "none");
}

TEST_F(VersionInfo, ReadsAllTexts) {
    const std::vector<std::string_view> names{"CompanyName",    "FileDescription",  "FileVersion",  "InternalName",
                                              "LegalCopyright", "OriginalFilename", "ProductName",  "ProductVersion",
                                              "Comments",       "LegalTrademarks",  "PrivateBuild", "SpecialBuild"};
    std::vector<version_block::Text> texts;
    for (const std::string_view name : names) {
        texts.push_back({name, name.substr(1)});
    }
    const std::array<Table, 1> tables{{{0x0409, 0x04B0, texts}}};
    ASSERT_EQ(load(version_block::build(someFixedPart(), tables)), 1);
    EXPECT_EQ(parts(), version1234);
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(info.getText(static_cast<Text>(i)), names[i].substr(1)) << names[i];
    }
    EXPECT_STREQ(info.getComments(), "omments");
}

TEST_F(VersionInfo, ChoosesTheTableByLanguage) {
    const EnvironmentVariable variable("LC_ALL", "de_DE.UTF-8"); // Windows has the user's language from elsewhere
    if (GetUserDefaultLangID() != 0x0407) GTEST_SKIP() << "the cases are those of a user whose language is German";
    struct Case {
        std::vector<LANGID> languages;
        std::size_t chosen;
    };
    const std::vector<Case> cases{
        {{0x0409, 0x0C07, 0x0407}, 2}, // the same
        {{0x0409, 0x0C07, 0x0807}, 1}, // the same primary language, the first such
        {{0x0000, 0x0807}, 1},         // also before a neutral one
        {{0x0409, 0x0107}, 1},         // of which the low 8 bits count
        {{0x0409, 0x0400, 0x0000}, 2}, // neutral
        {{0x0009, 0x0400}, 1},         // any with a neutral primary language
        {{0x040C, 0x0809, 0x0009}, 2}, // English
        {{0x040C, 0x0809, 0x0409}, 1}, // any English, the first such
        {{0x040C, 0x0410}, 0},         // whichever comes first
    };
    const std::array<version_block::Text, 3> comments{{{"Comments", "0"}, {"Comments", "1"}, {"Comments", "2"}}};
    for (const Case& each : cases) {
        std::vector<Table> tables;
        for (const LANGID language : each.languages) {
            tables.push_back({language, 0x04E4, {&comments[tables.size()], 1}});
        }
        ASSERT_EQ(load(version_block::build(someFixedPart(), tables)), 1);
        EXPECT_EQ(info.getComments(), comments[each.chosen].value) << "case " << (&each - cases.data());
    }
}

TEST_F(VersionInfo, LoadsWhatThereIs) {
    ASSERT_EQ(loadComplete(), 1);
    ASSERT_STREQ(info.getComments(), "text");

    const std::array<version_block::Text, 1> fileVersion{{{"FileVersion", "x"}}};
    const std::array<Table, 1> tables{{{0x0409, 0x04B0, fileVersion}}};
    const std::string otherFixedPart(56, '\1');
    for (const std::size_t size : {56U, 48U}) {
        ASSERT_EQ(load(version_block::build(std::span(otherFixedPart).first(size), tables)), 1);
        EXPECT_EQ(parts(), none);
    }
    EXPECT_STREQ(info.getText(Text::fileVersion), "x");
    EXPECT_EQ(info.getComments(), nullptr);

    ASSERT_EQ(load(version_block::build(someFixedPart(), {})), 1);
    EXPECT_EQ(parts(), version1234);
    EXPECT_EQ(info.getText(Text::fileVersion), nullptr);
}

TEST_F(VersionInfo, IsEmptyWithoutAResource) {
    for (const char* content : {"", "text"}) {
        ASSERT_EQ(loadComplete(), 1);
        writeFile(path, content);
        EXPECT_EQ(info.loadFromFile(path.c_str()), 0);
        EXPECT_EQ(parts(), none);
        EXPECT_EQ(info.getComments(), nullptr);
    }
    EXPECT_EQ(info.loadFromFile((folder / "no such file").string().c_str()), 0);
    EXPECT_EQ(loadComplete(), 1);
    EXPECT_EQ(info.loadFromModule(reinterpret_cast<HMODULE>(&info)), 0);
    EXPECT_EQ(info.loadFromModule(reinterpret_cast<HMODULE>(&someFixedPart)), 0) << "inside of a module";
    EXPECT_STREQ(info.getComments(), "text");
}

#include "cap/CAPFileVersionInfo.h"
#include "platform/posix/VersionBlock.h"
#include "tests/support/Support.h"

#include <cstring>
#include <elf.h>
#include <gtest/gtest.h>

namespace {

using Text = CAPFileVersionInfo::Text;
using version_block::Block;
using version_block::Table;

constexpr DWORD half(DWORD high, DWORD low) {
    return high << 16 | low;
}

/// A fixed part with file version 1.2.3.4.
version_block::FixedPart fixedPart() {
    VS_FIXEDFILEINFO info{};
    info.dwFileVersionMS = half(1, 2);
    info.dwFileVersionLS = half(3, 4);
    return version_block::fixedPart(info);
}

/// An ELF file of three sections, the last with a version resource.
std::string elfFile(const std::string& resource) {
    constexpr std::string_view names("\0.names\0.rsrc\0", 14);
    Elf64_Ehdr header{};
    std::memcpy(header.e_ident, ELFMAG, SELFMAG);
    header.e_ident[EI_CLASS] = ELFCLASS64;
    header.e_shoff = sizeof header;
    header.e_shentsize = sizeof(Elf64_Shdr);
    header.e_shnum = 3;
    header.e_shstrndx = 1;
    std::array<Elf64_Shdr, 3> sections{};
    sections[1].sh_name = 1;
    sections[1].sh_offset = sizeof header + sizeof sections;
    sections[1].sh_size = names.size();
    sections[2].sh_name = 8;
    sections[2].sh_offset = sections[1].sh_offset + names.size();
    sections[2].sh_size = resource.size();
    std::string file(reinterpret_cast<const char*>(&header), sizeof header);
    file.append(reinterpret_cast<const char*>(sections.data()), sizeof sections);
    return file.append(names).append(resource);
}

std::string elfFile(std::span<const char> fixedValue, const std::vector<Table>& tables) {
    const Block block = version_block::build(fixedValue, tables);
    return elfFile(std::string(block.begin(), block.end()));
}

/// A file with the fixed part and one text.
std::string completeFile() {
    const std::array<version_block::Text, 1> texts{{{"Comments", "text"}}};
    return elfFile(fixedPart(), {{0x0409, 0x04B0, texts}});
}

class VersionInfo : public testing::Test {
protected:
    int load(const std::string& file) {
        writeFile(path, file);
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
    std::string path = (folder / "library.so").string();
    CAPFileVersionInfo info;
};

const std::vector<int> version1234{0, 4, 3, 2, 1, 0};
const std::vector<int> none(6);

} // namespace

TEST_F(VersionInfo, ReadsTheModulesOwnFile) {
    ASSERT_EQ(info.loadFromFile(MODULE_FILE), 1);
    EXPECT_EQ(parts(), (std::vector<int>{0, 3, 0, 9, 5, 0}));
    EXPECT_STREQ(info.getText(Text::fileVersion), "5.9.0.3");
    EXPECT_STREQ(info.getText(Text::productVersion), "5.9.0.3");
    EXPECT_STREQ(info.getText(Text::internalName), "spm_i1pro3");
    EXPECT_EQ(info.getComments(), nullptr);
}

TEST_F(VersionInfo, ReadsAllTexts) {
    const std::vector<std::string_view> names{"CompanyName",    "FileDescription",  "FileVersion",  "InternalName",
                                              "LegalCopyright", "OriginalFilename", "ProductName",  "ProductVersion",
                                              "Comments",       "LegalTrademarks",  "PrivateBuild", "SpecialBuild"};
    std::vector<version_block::Text> texts;
    for (const std::string_view name : names) {
        texts.push_back({name, name.substr(1)});
    }
    ASSERT_EQ(load(elfFile(fixedPart(), {{0x0409, 0x04B0, texts}})), 1);
    EXPECT_EQ(parts(), version1234);
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(info.getText(static_cast<Text>(i)), names[i].substr(1)) << names[i];
    }
    EXPECT_STREQ(info.getComments(), "omments");
}

TEST_F(VersionInfo, ChoosesTheTableByLanguage) {
    struct Case {
        const char* user;
        std::vector<LANGID> languages;
        std::size_t chosen;
    };
    const std::vector<Case> cases{
        {"de_DE.UTF-8", {0x0409, 0x0C07, 0x0407}, 2}, // the same
        {"de_DE", {0x0409, 0x0C07, 0x0807}, 1},       // the same primary language, the first such
        {"de_LI", {0x0409, 0x0407}, 1},               // a country that is not known
        {"de_DE", {0x0409, 0x0400, 0x0000}, 2},       // neutral
        {"de_DE", {0x0409, 0x0400}, 1},               // any with a neutral primary language
        {"de_DE", {0x040C, 0x0809, 0x0009}, 2},       // English
        {"de_DE", {0x040C, 0x0809}, 1},               // any English
        {"de_DE", {0x040C, 0x0410}, 0},               // whichever comes first
        {"C", {0x040C, 0x0809, 0x0409}, 2},           // no language is US English
        {"xx_XX", {0x0809, 0x0409}, 1},               // as is an unknown one
        {"de_CH@euro", {0x0407, 0x0807}, 1},          // a country of its own
        {"en_GB", {0x0409, 0x0809}, 1},
        {"fil_PH", {0x040B, 0x0409}, 1}, // not Finnish
    };
    const std::array<version_block::Text, 3> comments{{{"Comments", "0"}, {"Comments", "1"}, {"Comments", "2"}}};
    for (const Case& each : cases) {
        const EnvironmentVariable variable("LC_ALL", each.user);
        std::vector<Table> tables;
        for (const LANGID language : each.languages) {
            tables.push_back({language, 0x04E4, {&comments[tables.size()], 1}});
        }
        ASSERT_EQ(load(elfFile(fixedPart(), tables)), 1);
        EXPECT_EQ(info.getComments(), comments[each.chosen].value) << each.user << " case " << (&each - cases.data());
    }
}

TEST_F(VersionInfo, LoadsWhatThereIs) {
    const std::string complete = completeFile();
    ASSERT_EQ(load(complete), 1);
    ASSERT_STREQ(info.getComments(), "text");

    const std::array<version_block::Text, 1> fileVersion{{{"FileVersion", "x"}}};
    const std::string otherFixedPart(56, '\1');
    for (const std::size_t size : {56U, 48U}) {
        ASSERT_EQ(load(elfFile(std::span(otherFixedPart).first(size), {{0x0409, 0x04B0, fileVersion}})), 1);
        EXPECT_EQ(parts(), none);
    }
    EXPECT_STREQ(info.getText(Text::fileVersion), "x");
    EXPECT_EQ(info.getComments(), nullptr);

    ASSERT_EQ(load(elfFile(fixedPart(), {})), 1);
    EXPECT_EQ(parts(), version1234);
    EXPECT_EQ(info.getText(Text::fileVersion), nullptr);

    const auto changed = [&](std::size_t offset) {
        std::string file = complete;
        ++file[offset];
        return file;
    };
    const std::size_t sectionName = complete.find(".rsrc");
    for (const std::string& file : {std::string(), std::string("text"), elfFile(""), elfFile(std::string(100, '\0')),
                                    changed(0), changed(EI_CLASS), changed(offsetof(Elf64_Ehdr, e_shentsize)),
                                    changed(sectionName), changed(sectionName + 5)}) {
        ASSERT_EQ(load(complete), 1);
        EXPECT_EQ(load(file), 0);
        EXPECT_EQ(parts(), none);
        EXPECT_EQ(info.getComments(), nullptr);
    }
    EXPECT_EQ(info.loadFromFile((folder / "no such file").c_str()), 0);
    EXPECT_EQ(load(complete), 1);
    EXPECT_EQ(info.loadFromModule(reinterpret_cast<HMODULE>(&info)), 0);
    EXPECT_EQ(info.loadFromModule(reinterpret_cast<HMODULE>(&completeFile)), 0) << "inside of a module";
    EXPECT_STREQ(info.getComments(), "text");
}

TEST_F(VersionInfo, KeepsLengthsWithinWhatHoldsThem) {
    struct Case {
        std::string_view node;
        std::uint16_t length;
        std::uint16_t valueLength;
        int loaded;
        const char* comments;
    };
    const std::vector<Case> cases{
        {"VS_VERSION_INFO", 0xFFFF, 52, 0, nullptr},
        {"VS_VERSION_INFO", 4, 52, 0, nullptr},
        {"Comments", 0xFFFF, 0xFFFF, 1, nullptr},
        {"Comments", 28, 0xFFFF, 1, "te"},
        {"Comments", 24, 5, 1, ""},
        {"Comments", 0, 5, 1, nullptr},
    };
    for (const Case& each : cases) {
        std::string file = completeFile();
        std::string name;
        for (const char character : each.node) {
            name += {character, '\0'};
        }
        const std::size_t header = file.find(name) - 6;
        std::memcpy(&file[header], &each.length, 2);
        std::memcpy(&file[header + 2], &each.valueLength, 2);
        EXPECT_EQ(load(file), each.loaded) << each.node << " " << each.length;
        EXPECT_STREQ(info.getComments(), each.comments) << each.node << " " << each.length;
    }
}

// The sanitizers watch: nothing outside the data may be touched, and every load must come to an end.
TEST_F(VersionInfo, SurvivesTruncatedAndHostileFiles) {
    const std::string file = completeFile();
    for (std::size_t length = 0; length < file.size(); ++length) {
        load(file.substr(0, length));
    }
    for (std::size_t i = 0; i < file.size(); ++i) {
        for (const char byte : {'\0', '\1', '\x7F', '\xFF'}) {
            std::string changed = file;
            changed[i] = byte;
            load(changed);
            changed[i ^ 1] = byte;
            load(changed);
        }
    }
    EXPECT_EQ(load(file), 1);
}

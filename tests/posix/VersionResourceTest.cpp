// Reading version resources from damaged files.

#include "tests/support/VersionedLibrary.h"

#include <elf.h>

namespace {

class VersionResource : public VersionedLibrary {
protected:
    VersionResource() {
        writeLibrary(path, versions[2]);
        complete = readFile(path);
    }

    int loadFile(const std::string& file) {
        writeFile(path, file);
        return info.loadFromFile(path.c_str());
    }

    std::string complete;
};

} // namespace

TEST_F(VersionResource, RequiresAnElfFile) {
    const std::size_t name = complete.find(".rsrc");
    for (const std::size_t offset :
         {std::size_t{0}, std::size_t{EI_CLASS}, offsetof(Elf64_Ehdr, e_shentsize), name, name + 5}) {
        ASSERT_EQ(loadFile(complete), 1);
        std::string changed = complete;
        ++changed[offset];
        EXPECT_EQ(loadFile(changed), 0) << offset;
    }
}

TEST_F(VersionResource, LimitsLengthsToTheParentNode) {
    struct Case {
        std::u16string node;
        std::uint16_t length;
        std::uint16_t valueLength;
        int loaded;
        const char* comments;
    };
    const std::vector<Case> cases{
        {u"VS_VERSION_INFO", 0xFFFF, 52, 0, nullptr},
        {u"VS_VERSION_INFO", 5, 52, 0, nullptr},
        {u"VS_VERSION_INFO", 6, 52, 1, nullptr},
        {u"Comments", 0xFFFF, 0xFFFF, 1, nullptr},
        {u"Comments", 30, 0xFFFF, 1, "\xFF?"},
        {u"Comments", 26, 0xFFFF, 1, "\xFF"},
        {u"Comments", 24, 3, 1, ""},
        {u"Comments", 22, 3, 1, nullptr},
        {u"Comments", 0, 3, 1, nullptr},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(&each - cases.data());
        std::string file = complete;
        const std::string_view name(reinterpret_cast<const char*>(each.node.data()), 2 * each.node.size());
        const std::size_t header = file.find(name) - 6;
        std::memcpy(&file[header], &each.length, 2);
        std::memcpy(&file[header + 2], &each.valueLength, 2);
        EXPECT_EQ(loadFile(file), each.loaded);
        EXPECT_STREQ(info.getComments(), each.comments);
    }
}

// Every load must terminate. The sanitizers detect reads outside the data.
TEST_F(VersionResource, SurvivesTruncatedAndHostileFiles) {
    for (std::size_t i = 0; i < complete.size(); ++i) {
        loadFile(complete.substr(0, i));
        for (const char byte : {'\0', '\xFF'}) {
            std::string changed = complete;
            changed[i] = byte;
            loadFile(changed);
            changed[i ^ 1] = byte;
            loadFile(changed);
        }
    }
    EXPECT_EQ(loadFile(complete), 1);
}

TEST_F(VersionResource, RejectsABlockThatIsTooSmall) {
    std::vector<char> block(GetFileVersionInfoSizeA(path.c_str(), nullptr));
    const auto size = static_cast<DWORD>(block.size());
    EXPECT_EQ(GetFileVersionInfoA(path.c_str(), 0, size - 1, block.data()), FALSE);
    EXPECT_NE(GetFileVersionInfoA(path.c_str(), 0, size, block.data()), FALSE);
}

// On this system, the environment defines the user's language.
TEST_F(VersionResource, SelectsTheUsersLanguage) {
    const EnvironmentVariable variable("LC_ALL", "de_DE.UTF-8");
    const std::vector<std::string> chosen{
        "0407", // the user's language
        "0C07", // the first with the same primary language
        "0807", // the same primary language, before the neutral language
        "0107", // the primary language is the low 8 bits
        "0000", // the neutral language
        "0400", // a neutral primary language
        "0009", // English
        "0809", // the first with English as primary language
        "040C", // the first entry
    };
    for (std::size_t i = 0; i < chosen.size(); ++i) {
        ASSERT_EQ(load(versions[3 + i]), 1);
        EXPECT_EQ(info.getComments(), chosen[i]);
    }
}

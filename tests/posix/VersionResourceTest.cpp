// The reader of version resources, on files that are damaged.

#include "cap/CAPFileVersionInfo.h"
#include "tests/support/Support.h"
#include "tests/support/VersionedLibrary.h"

#include <cstring>
#include <elf.h>
#include <gtest/gtest.h>

namespace {

class VersionResource : public testing::Test {
protected:
    VersionResource() {
        writeCompleteLibrary(path);
        complete = readFile(path);
    }

    int load(const std::string& file) {
        writeFile(path, file);
        return info.loadFromFile(path.c_str());
    }

    TempFolder folder;
    std::string path = (folder / "library.so").string();
    std::string complete;
    CAPFileVersionInfo info;
};

} // namespace

TEST_F(VersionResource, MustStandInAnElfFile) {
    const auto changed = [&](std::size_t offset) {
        std::string file = complete;
        ++file[offset];
        return file;
    };
    const std::size_t name = complete.find(".rsrc");
    for (const std::size_t offset :
         {std::size_t{0}, std::size_t{EI_CLASS}, offsetof(Elf64_Ehdr, e_shentsize), name, name + 5}) {
        ASSERT_EQ(load(complete), 1);
        EXPECT_EQ(load(changed(offset)), 0) << offset;
        EXPECT_EQ(info.getFileVersionPart(0), 0);
        EXPECT_EQ(info.getComments(), nullptr);
    }
}

TEST_F(VersionResource, KeepsLengthsWithinWhatHoldsThem) {
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
        std::string file = complete;
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
TEST_F(VersionResource, SurvivesTruncatedAndHostileFiles) {
    for (std::size_t length = 0; length < complete.size(); ++length) {
        load(complete.substr(0, length));
    }
    for (std::size_t i = 0; i < complete.size(); ++i) {
        for (const char byte : {'\0', '\1', '\x7F', '\xFF'}) {
            std::string changed = complete;
            changed[i] = byte;
            load(changed);
            changed[i ^ 1] = byte;
            load(changed);
        }
    }
    EXPECT_EQ(load(complete), 1);
}

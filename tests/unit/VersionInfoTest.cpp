#include "common/Environment.h"
#include "common/LibraryNames.h"
#include "tests/support/VersionedLibrary.h"

namespace {

using Numbers = std::vector<DWORD>;
using Texts = std::vector<std::string>;

class VersionInfo : public VersionedLibrary {
protected:
    Numbers parts() const {
        Numbers result;
        for (int i = -1; i <= 4; ++i) {
            result.push_back(info.getFileVersionPart(i));
        }
        return result;
    }

    Texts texts() const {
        Texts result;
        for (std::size_t i = 0; i < CAPFileVersionInfo::textCount; ++i) {
            const char* const text = info.getText(static_cast<CAPFileVersionInfo::Text>(i));
            result.emplace_back(text != nullptr ? text : "none");
        }
        return result;
    }
};

} // namespace

TEST_F(VersionInfo, ReadsTheModulesResource) {
    const std::string module = (common::programFolder() / common::moduleFileName).string();
    ASSERT_EQ(info.loadFromFile(module.c_str()), 1);
    EXPECT_EQ(parts(), (Numbers{0, 3, 0, 9, 5, 0}));
    EXPECT_EQ(texts(), (Texts{"Kestrova", "Spectrophotometer module for the i1Pro 3", "5.9.0.3", "spm_i1pro3",
                              "Copyright Kestrova", common::moduleFileName, "Spectrophotometer modules", "5.9.0.3",
                              "none", "none", "none", "none"}));

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
    EXPECT_NE(VerQueryValueA(block.data(), "\\StringFileInfo\\040904B0\\FileVersion", &value, &length), FALSE);
}

TEST_F(VersionInfo, ReplacesWhatWasLoadedBefore) {
    std::string otherSize = versions[1];
    --otherSize[2]; // of the fixed part
    Texts expected;
    for (std::size_t i = 0; i < CAPFileVersionInfo::textCount; ++i) {
        expected.push_back("text " + std::to_string(i));
    }
    for (const bool hasResource : {true, false}) {
        ASSERT_EQ(load(versions[0]), 1);
        EXPECT_EQ(parts(), (Numbers{0, 4, 3, 2, 1, 0}));
        EXPECT_EQ(texts(), expected);
        if (hasResource) {
            writeLibrary(path, otherSize);
        } else {
            writeFile(path, "text");
        }
        EXPECT_EQ(info.loadFromFile(path.c_str()), hasResource ? 1 : 0);
        EXPECT_EQ(parts(), Numbers(6));
        EXPECT_EQ(texts(), Texts(CAPFileVersionInfo::textCount, "none"));
    }
    EXPECT_EQ(info.loadFromFile((folder / "no such file").string().c_str()), 0);
    ASSERT_EQ(load(versions[0]), 1);
    EXPECT_EQ(info.loadFromModule(reinterpret_cast<HMODULE>(&info)), 0);
    EXPECT_EQ(info.loadFromModule(reinterpret_cast<HMODULE>(&common::programFolder)), 0) << "not a base address";
    EXPECT_EQ(texts(), expected) << "unchanged";
}

#include "common/System.h"
#include "spm/doctor/Doctor.h"
#include "tests/support/Support.h"

#include <algorithm>
#include <gtest/gtest.h>

TEST(CodePage, LeavesOutAModuleThatItHasNoNameFor) {
    const TempFolder folder;
    const std::filesystem::path place = folder / "" / u8"\u8272";
    std::filesystem::create_directory(place);
    for (const char* const name : {common::moduleFileName, common::sdkFileName}) {
        std::filesystem::copy_file(common::programFolder() / name, place / name);
    }
    const std::vector<spm::Finding> findings = spm::examine(place / common::moduleFileName);
    for (const std::string subject : {"Module", "Log file"}) {
        const auto finding = std::ranges::find(findings, subject, &spm::Finding::subject);
        EXPECT_EQ(finding->verdict, spm::Verdict::note);
        EXPECT_TRUE(finding->advice.starts_with("move the module to a folder ")) << finding->text;
    }
}

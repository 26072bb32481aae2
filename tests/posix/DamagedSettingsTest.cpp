#include "module/SPMRegistry.h"
#include "spm/doctor/Settings.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <gtest/gtest.h>

TEST(DamagedSettings, AreWrong) {
    const Settings settings;
    writeFile(SPMRegistry::place(), "Windows Registry Editor Version 5.00\n");
    const spm::Finding finding = spm::examineSettings().front();
    EXPECT_EQ(finding.verdict, spm::Verdict::wrong);
    EXPECT_EQ(finding.text, "the defaults hold, because " + SPMRegistry::place() + " is damaged or can't be read");
}

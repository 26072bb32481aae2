#include "host/Doctor.h"
#include "host/System.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <algorithm>
#include <gtest/gtest.h>

TEST(DamagedSettings, AreWrong) {
    const Settings settings;
    writeFile(host::settingsPlace(), "Windows Registry Editor Version 5.00\n");
    const std::vector<host::Finding> findings = host::examine(host::programFolder() / host::moduleFileName);
    const auto finding = std::find_if(findings.begin(), findings.end(),
                                      [](const host::Finding& each) { return each.subject == "Settings"; });
    ASSERT_NE(finding, findings.end());
    EXPECT_EQ(finding->verdict, host::Verdict::wrong);
    EXPECT_EQ(finding->text, "the defaults hold, because " + host::settingsPlace() + " is damaged or can't be read");
}

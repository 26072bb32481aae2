#include "spm/Console.h"

#include "common/Environment.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <gtest/gtest.h>

TEST(Console, QuotesForTheShell) {
    const TempFolder folder;
    for (const std::string text : {"$HOME `id` \"\\", "it's", "", "a\nb", "#~*?;", "run_1-2.csv"}) {
        execute("printf %s " + spm::quoted(text) + " > '" + (folder / "out").string() + "'");
        EXPECT_EQ(readFile(folder / "out"), text);
    }
}

// Standard output is a device that is always full.
TEST(FullDisk, StillWritesTheReport) {
    const Settings settings;
    const TempFolder folder;
    const std::string report = folder / "page.html";
    EXPECT_EQ(run(common::programFolder() / "spm", {"measure", "--rows", "2", "--patches", "2", "--report", report},
                  {"/dev/full", folder / "err"}),
              1);
    const std::string errors = readText(folder / "err");
    EXPECT_NE(errors.find("standard output: No space left on device\n"), std::string::npos) << errors;
    EXPECT_NE(readFile(report).find("4 of 4 patches"), std::string::npos) << errors;
}

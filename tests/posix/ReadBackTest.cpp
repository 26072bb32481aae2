// Reads the output formats with other programs: Little CMS, and Python's JSON and XML parsers.

#include "spm/formats/Report.h"
#include "tests/spm/SampleRuns.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <gtest/gtest.h>
#include <lcms2.h>

TEST(ReadBack, CgatsByLittleCms) {
    const cmsHANDLE file = cmsIT8LoadFromFile(nullptr, SOURCE_FOLDER "/tests/spm/data/rows.cgats");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(cmsIT8TableCount(file), 3U);
    EXPECT_STREQ(cmsIT8GetPropertyMulti(file, "WEIGHTING_FUNCTION", "OBSERVER"), "2 degree");
    EXPECT_STREQ(cmsIT8GetPropertyMulti(file, "COMPUTATIONAL_PARAMETER", "COLORIMETRY"), "calculated from spectra");
    EXPECT_DOUBLE_EQ(cmsIT8GetPropertyDbl(file, "SPECTRAL_END_NM"), 730);
    EXPECT_STREQ(cmsIT8GetDataRowCol(file, 1, 1), "d e f g  ");
    EXPECT_DOUBLE_EQ(cmsIT8GetDataDbl(file, "1", "SPECTRAL_NM380"), 0.333333);
    EXPECT_DOUBLE_EQ(cmsIT8GetDataDbl(file, "1", "LAB_A"), -80.09);
    cmsIT8SetTable(file, 1);
    EXPECT_STREQ(cmsIT8GetDataRowCol(file, 0, 1), "-");
    EXPECT_DOUBLE_EQ(cmsIT8GetDataDbl(file, "3", "LAB_A"), 12.3457);
    cmsIT8Free(file);
}

TEST(ReadBack, JsonAndReportByPython) {
    const TempFolder folder;
    writeFile(folder / "page.html", spm::htmlReport(simulatedRows()));
    const std::string program = R"(import json, sys, xml.etree.ElementTree as xml
print(json.load(open(sys.argv[1]))["readings"][1]["name"], xml.parse(sys.argv[2]).find(".//table")[1][1][0].text))";
    const Output output{folder / "out", folder / "err"};
    run("python3", {"-c", program, SOURCE_FOLDER "/tests/spm/data/rows.json", folder / "page.html"}, output);
    EXPECT_EQ(readText(output.out), "a \"b\", 'c' <&> a \"b\", 'c' <&>\n") << readText(output.err);
}

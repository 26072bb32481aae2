// Reads the output formats with other programs: Little CMS, and Python's JSON and XML parsers.

#include "spm/formats/Formats.h"
#include "tests/spm/SampleRuns.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <gtest/gtest.h>
#include <lcms2.h>

TEST(ReadBack, CgatsByLittleCms) {
    const cmsHANDLE file = cmsIT8LoadFromFile(nullptr, SOURCE_FOLDER "/tests/spm/data/rows.cgats");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(cmsIT8TableCount(file), 1U);
    EXPECT_STREQ(cmsIT8GetPropertyMulti(file, "WEIGHTING_FUNCTION", "OBSERVER"), "2 degree");
    EXPECT_STREQ(cmsIT8GetPropertyMulti(file, "COMPUTATIONAL_PARAMETER", "COLORIMETRY"), "calculated from spectra");
    EXPECT_DOUBLE_EQ(cmsIT8GetPropertyDbl(file, "SPECTRAL_END_NM"), 730);
    EXPECT_DOUBLE_EQ(cmsIT8GetPropertyDbl(file, "NUMBER_OF_SETS"), 2);
    EXPECT_STREQ(cmsIT8GetData(file, "A 1", "SAMPLE_NAME"), "d # e");
    EXPECT_DOUBLE_EQ(cmsIT8GetDataDbl(file, "A10", "CMYK_C"), 100);
    EXPECT_DOUBLE_EQ(cmsIT8GetDataDbl(file, "A10", "LAB_A"), -80.09);
    EXPECT_DOUBLE_EQ(cmsIT8GetDataDbl(file, "A10", "SPECTRAL_NM380"), 33.3333);
    cmsIT8Free(file);
}

TEST(ReadBack, JsonAndReportByPython) {
    const TempFolder folder;
    writeFile(folder / "page.html", spm::htmlReport(measuredSpots()));
    const std::string program = R"(import json, sys, xml.etree.ElementTree as xml
print(json.load(open(sys.argv[1]))["readings"][0]["name"], xml.parse(sys.argv[2]).find(".//table")[1][1][0].text))";
    const Output output{folder / "out", folder / "err"};
    run("python3", {"-c", program, SOURCE_FOLDER "/tests/spm/data/spots.json", folder / "page.html"}, output);
    EXPECT_EQ(readText(output.out), "b\n\"2\", <&> b\uFFFD\"2\", <&>\n") << readText(output.err);
}

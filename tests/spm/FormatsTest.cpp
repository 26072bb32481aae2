// Compares each output format with a golden file in tests/spm/data/.

#include "spm/formats/Formats.h"

#include "spm/colour/Srgb.h"
#include "spm/formats/Report.h"
#include "spm/formats/Table.h"
#include "tests/spm/SampleRuns.h"
#include "tests/support/Support.h"

#include <gtest/gtest.h>

namespace {

std::string tables(const spm::Run& run) {
    return tableHeader(run) + labLines(run, run.patches) + spectraTable(run, run.patches) + formatComparison(run);
}

/// The page from its title on, without the style sheet.
std::string body(const spm::Run& run) {
    const std::string page = spm::htmlReport(run);
    return page.substr(page.find("<title>"));
}

} // namespace

TEST(Formats, MatchTheirGoldenFiles) {
    const std::vector<std::pair<std::string, std::string (*)(const spm::Run&)>> formats{{".csv", spm::formatCsv},
                                                                                        {".json", spm::formatJson},
                                                                                        {".cgats", spm::formatCgats},
                                                                                        {".html", body},
                                                                                        {".txt", tables}};
    const std::string folder = SOURCE_FOLDER "/tests/spm/data/";
    for (const auto& [extension, format] : formats) {
        expectGolden(format(simulatedRows()), folder + "rows" + extension);
        if (extension != ".cgats") expectGolden(format(measuredSpots()), folder + "spots" + extension);
    }
}

// The axes go from 330 nm to 890 nm, and from 0 to 200 percent.
TEST(Formats, FitTheAxesToTheSpectra) {
    spm::Run run;
    const spm::Spectrum spectrum{{330, -5}, {380, 0}, {390, 12.4F}, {410, 50}, {890, 1e6F}};
    run.patches = {{.name = "a", .reading = spm::Reading{{50, 0, 0}, spectrum}}};
    const std::string points = "\"56.0,352.0 106.0,352.0 116.0,332.2 136.0,272.0 616.0,32.0\"";
    EXPECT_NE(body(run).find(points), std::string::npos) << body(run);
}

// Calculated with Lindbloom's formulae and matrices, independently of this code.
TEST(Srgb, AdaptsToTheWhiteOfTheScreen) {
    const SPM_LAB blue{28.778F, 14.179F, -50.297F};
    const spm::Xyz d50{96.422, 100, 82.521};
    EXPECT_EQ(spm::toSrgb(blue, d50), "#233f93");
    EXPECT_EQ(spm::toSrgb({100, 0, 0}, d50), "#ffffff");
}

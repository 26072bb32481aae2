// Compares each output format with a golden file in tests/spm/data/.

#include "spm/formats/Formats.h"

#include "spm/colour/Colorimetry.h"
#include "tests/spm/SampleRuns.h"
#include "tests/support/Support.h"

#include <gtest/gtest.h>

namespace {

std::string tables(const spm::Run& run) {
    return formatTable(run, run.patches, true) + formatComparison(run);
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
    const std::filesystem::path folder = SOURCE_FOLDER "/tests/spm/data";
    for (const auto& [extension, format] : formats) {
        expectGolden(format(simulatedRows()), folder / ("rows" + extension));
        if (extension != ".cgats") expectGolden(format(measuredSpots()), folder / ("spots" + extension));
    }
}

// Calculated with Lindbloom's formulae and matrices, independently of this code.
TEST(Srgb, AdaptsToTheWhiteOfTheScreen) {
    const SPM_LAB blue{28.778F, 14.179F, -50.297F};
    const spm::Xyz d50{96.422, 100, 82.521};
    EXPECT_EQ(spm::toSrgb(blue, d50), "#233f93");
    EXPECT_EQ(spm::toSrgb({100, 0, 0}, d50), "#ffffff");
}

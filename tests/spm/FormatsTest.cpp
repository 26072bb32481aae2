// Compares each output format with a golden file in tests/spm/data/.

#include "spm/formats/Formats.h"

#include "spm/Error.h"
#include "spm/formats/Report.h"
#include "spm/formats/Table.h"
#include "tests/spm/SampleRuns.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <gtest/gtest.h>
#include <limits>
#include <regex>

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

std::string tables(const spm::Run& run) {
    constexpr auto colours = spm::ColourDepth::palette256;
    return labTable(run, run.readings, spm::ColourDepth::none) + labTable(run, run.readings, colours) +
           spectraTable(run, run.readings, colours);
}

/// The page from its title on, without the style sheet.
std::string body(const spm::Run& run) {
    const std::string page = spm::htmlReport(run);
    return page.substr(page.find("<title>"));
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
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
        if (format != spm::formatCsv && format != tables) continue; // the other formats have nothing new for spots
        expectGolden(format(measuredSpots()), folder + "spots" + extension);
    }
}

// What the golden files don't have: X, Y and Z, a comparison, and a real instrument's spots.
TEST(Formats, IncludeWhatTheRunHas) {
    spm::Run xyz = simulatedRows();
    xyz.readings = {
        {"a", SPM_LAB{50, 10, -20}, {{380, 1}}}, {"b", SPM_LAB{5, 0, 0}, {}}, {"c", std::nullopt, {{380, 1}}}};
    xyz.withXyz = true;
    const spm::Run run = comparedSpots();
    const std::string json = std::regex_replace(spm::formatJson(run), std::regex("\\s+"), "");
    const std::string page = body(run);
    const std::string measuredPage = body(measuredSpots());
    const std::vector<std::pair<std::string, std::string>> cases{
        {formatCsv(xyz), "b*,X,Y,Z,nm380_percent,"},
        {formatCsv(xyz), "\na,50.0000,10.0000,-20.0000,19.6986,18.4187,24.7019,1.0000,"},
        {formatCsv(xyz), "\nc,,,,,,,1.0000,"},
        {formatJson(xyz), "      \"xyz\": {\n        \"X\": 19.69"},
        {formatCgats(xyz), "\nNUMBER_OF_FIELDS\t9\n"},
        {formatCgats(xyz), "\tLAB_B\tXYZ_X\tXYZ_Y\tXYZ_Z\tSPECTRAL_NM380\n"},
        {formatCgats(xyz), "\n2\t\"b\"\t5.0000\t0.0000\t0.0000\t0.5337\t0.5535\t0.4567\n"},
        {tables(xyz), "      b*      X      Y      Z\n"},
        {tables(xyz), "  -20.00  19.70  18.42  24.70\n"},
        {spm::formatJson(measuredSpots()), "\"name\": \"gr\uFFFDn\""},
        {measuredPage, "<h1>Measurement</h1>\n<dl>"},
        {measuredPage, "<ol>\n<li title"},
        {measuredPage, "</ol>\n<h2>Spectra</h2>"},
        // The axes go from 330 nm to 890 nm, and from 0 to 200 percent.
        {measuredPage, "\"56.0,352.0 106.0,352.0 116.0,332.2 126.0,332.0 136.0,272.0 146.0,212.0 616.0,32.0\""},
        {spm::formatCsv(run), "name,L*,a*,b*,expected_L*,expected_a*,expected_b*,CIE76,illuminant"},
        {spm::formatCsv(run), "\nb,90.0000,0.0000,0.0000,,,,,D65,"},
        {spm::formatCsv(run), "\na,50.0000,3.0000,0.0000,50.0000,0.0000,4.0000,5.0000,D65,"},
        {json, R"("comparison":{"reference":"r.csv","formula":"CIE76","patches":1,"mean":5.0,"median":5.0,"p90":5.0,)"
               R"("p95":5.0,"max":5.0,"limits":{"max":4.0,"mean":5.5},"passed":false,"notInReference":["b"],)"
               R"("notMeasured":["c"]})"},
        {json, R"("expected":{"L":50.0,"a":0.0,"b":4.0},"difference":5.0})"},
        {spm::formatCgats(run), "FIELDS\t6\nBEGIN_DATA_FORMAT\nSAMPLE_ID\tSAMPLE_NAME\tLAB_L\tLAB_A\tLAB_B\tLAB_DE\n"},
        {spm::formatCgats(run), "\n2\t\"a\"\t50.0000\t3.0000\t0.0000\t5.0000\n"},
        {spm::formatCgats(run), "\n1\t\"b\"\t90.0000\t0.0000\t0.0000\n"},
        {page, "<p class=\"verdict failed\"><strong>Tolerance: FAILED<"},
        {page, "<dt>Reference</dt><dd>r.csv<"},
        {page, "<dt>mean</dt><dd>5.00 (at most 5.5: passed)<"},
        {page, "<dt>maximum</dt><dd>5.00 (at most 4: FAILED by 1)<"},
        {page, "Not compared, because not in the reference: &quot;b&quot;"},
        {page, "<li title=\"a: 50.00 3.00 0.00, expected 50.00 0.00 4.00, difference 5.00\"><i style=\"background: "
               "linear-gradient(90deg, #7c7577 50%, #7a7770 50%)\">"},
        {page, "<td>0.00</td><td>5.00</td></tr>\n<tr><th scope=\"row\">b</th>"}};
    for (const auto& [text, part] : cases) {
        EXPECT_TRUE(contains(text, part)) << part << '\n' << text;
    }
}

TEST(Formats, RejectMissingAndInvalidValues) {
    const std::vector<std::pair<std::vector<spm::Reading>, std::string>> cases{
        {{}, "there are no readings to write; measure at least one patch"},
        {{{"x", std::nullopt, {}}}, "there are no readings to write; measure at least one patch"},
        {{{"x", SPM_LAB{notANumber, 0, 0}, {}}}, "the patch \"x\" has an invalid value for L*: nan; measure it again"},
        {{{"x", SPM_LAB{0, -infinite, 0}, {}}}, "for a*: -inf"},
        {{{"x", SPM_LAB{0, 0, notANumber}, {}}}, "for b*: nan"},
        {{{"x", std::nullopt, {{380, 1}, {730, infinite}}}}, "for 730 nm: inf"},
    };
    for (const auto& [readings, message] : cases) {
        spm::Run run;
        run.readings = readings;
        for (const auto format : {spm::formatCsv, spm::formatJson, spm::formatCgats, spm::htmlReport}) {
            try {
                ADD_FAILURE() << format(run);
            } catch (const spm::Error& error) {
                EXPECT_TRUE(contains(error.what(), message)) << error.what();
            }
        }
    }
}

TEST(ColourDepth, FollowsTheEnvironment) {
    const EnvironmentVariable colours("COLORTERM", "");
    const EnvironmentVariable terminal("TERM", "xterm-256color");
    EXPECT_EQ(spm::colourDepth(true), spm::ColourDepth::palette256);
    EXPECT_EQ(spm::colourDepth(false), spm::ColourDepth::none);
    setVariable("COLORTERM", "24bit");
    EXPECT_EQ(spm::colourDepth(true), spm::ColourDepth::trueColour);
    const EnvironmentVariable none("NO_COLOR", "1");
    EXPECT_EQ(spm::colourDepth(true), spm::ColourDepth::none);
}

#include "spm/run/Comparison.h"

#include "common/CsvReader.h"
#include "spm/Error.h"
#include "spm/formats/RunFile.h"
#include "spm/formats/Table.h"
#include "tests/support/Support.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

// Table 1 of Sharma, Wu and Dalal, Color Research and Application 30 (2005), 21-30.
TEST(DeltaE, MatchesPublishedPairs) {
    const std::string text = readFile(SOURCE_FOLDER "/tests/spm/data/ciede2000.csv");
    common::CsvReader csv(text, "ciede2000.csv");
    csv.next();
    int pairs = 0;
    while (const auto pair = csv.next()) {
        ++pairs;
        const auto number = [&](std::size_t i) { return std::stof((*pair)[i]); };
        const SPM_LAB one{number(0), number(1), number(2)};
        const SPM_LAB other{number(3), number(4), number(5)};
        const double deltaE = std::stod((*pair)[6]);
        EXPECT_NEAR(spm::deltaE(spm::Formula::ciede2000, one, other), deltaE, 1e-4) << "pair " << pairs;
        EXPECT_NEAR(spm::deltaE(spm::Formula::ciede2000, other, one), deltaE, 1e-4) << "pair " << pairs << " reversed";
    }
    EXPECT_EQ(pairs, 34);
}

// Examples from the documentation of the Python libraries Colour and, the last one, python-colormath; with the weights
// for graphic arts.
TEST(DeltaE, MatchesPublishedExamples) {
    const SPM_LAB reference{100, 21.57210357F, 272.22819350F};
    const std::vector<std::tuple<SPM_LAB, double, double>> cases{
        {{100, 426.67945353F, 72.39590835F}, 83.779225, 451.713302},
        {{100, 74.05216981F, 276.45318193F}, 10.053932, 52.649861},
        {{100, 8.32281957F, -73.58297716F}, 57.535454, 346.064892}};
    for (const auto& [sample, cie94, cie76] : cases) {
        EXPECT_NEAR(spm::deltaE(spm::Formula::cie94, sample, reference), cie94, 1e-4);
        EXPECT_NEAR(spm::deltaE(spm::Formula::cie76, sample, reference), cie76, 1e-4);
    }
    EXPECT_NEAR(spm::deltaE(spm::Formula::cie94, {0.7F, 14.2F, -1.8F}, {0.9F, 16.3F, -2.22F}), 1.249293, 1e-4);
}

TEST(Comparison, MatchesPatchesByName) {
    const TempFolder folder;
    const std::filesystem::path file = folder / "reference.csv"; // as written by spreadsheets
    writeFile(file, "\xEF\xBB\xBF\"Name\",note,b,a*,LAB_L\r\n"
                    "white (.05\"),more,.25,-0.5,50\r\n"
                    "\r\n"
                    "\"red, \"\"signal\"\"\",,-0,0,\"50\"\n"
                    "A2,,0,0,5e1\n"
                    "\"\",,-500,500,0");
    spm::Run run;
    run.simulation = "simulated";
    run.patches = {{.name = "B1", .reading = spm::Reading{{50, 0, 0}}},
                   {.name = "white (.05\")", .reading = spm::Reading{{50, 0, 0}}},
                   {.name = "red, \"signal\"", .reading = spm::Reading{{52, 0, 0}}},
                   {.name = "A2"}};
    spm::Reference reference = spm::readReference(file, run.conditions);
    reference.limits = spm::parseLimits("mean=1.5,p95=1.9");
    run.reference = std::make_shared<const spm::Reference>(reference);
    EXPECT_EQ(spm::formatComparison(run),
              "\nCompared with " + file.string() +
                  ", which doesn't say its illuminant and observer: 2 of 3 patches compared\n"
                  "D65/10 degree, simulated CIEDE2000      dL*      da*      db*\n"
                  "red, \"signal\"                 1.99    +2.00    +0.00    +0.00\n"
                  "white (.05\")                  0.78    +0.00    +0.50    -0.25\n"
                  "\n"
                  "mean                          1.39 (at most 1.5: passed)\n"
                  "median                        1.39\n"
                  "90th percentile               1.99\n"
                  "95th percentile               1.99 (at most 1.9: FAILED by 0.093)\n"
                  "maximum                       1.99\n"
                  "Tolerance                   FAILED\n"
                  "Not compared, because not in the reference: \"B1\"\n"
                  "Not compared, because not measured: \"\", \"A2\"\n");
}

TEST(Comparison, CalculatesMedianAndPercentiles) {
    spm::Run run;
    run.reference.reset(new spm::Reference{"chart.csv", {{"A1", {50, 0, 0}}}, spm::Formula::cie76});
    std::string text;
    for (const int difference : {19, -1, 18, 2, 17, 3, 16, 4, 15, 5, 14, 6, 13, 7, 12, 8, 11, 9, 10, 20}) {
        run.patches.push_back({.name = "A1", .reading = spm::Reading{{static_cast<float>(50 + difference), 0, 0}}});
        const spm::Comparison comparison = spm::compare(run).value();
        text += '\n';
        for (const spm::Statistic& statistic : comparison.statistics) {
            text += fmt::format(" {} {}", statistic.key, statistic.value);
        }
    }
    EXPECT_TRUE(text.ends_with("\n mean 10 median 10 p90 18 p95 19 max 19" // for 19 patches
                               "\n mean 10.5 median 10.5 p90 18 p95 19 max 20"))
        << text;
}

TEST(Comparison, ParsesLimits) {
    EXPECT_EQ(spm::parseLimits("p90=3.5,max=0"), (spm::Limits{{"max", 0}, {"p90", 3.5}}));
    for (const char* const text : {"", "mean", "mean=", "mean=2,", "p99=2", "max=-1", "max=nan", "max=1e999", "max=2x",
                                   "mean=2,mean=3", "mean=2;max=5"}) {
        EXPECT_THROW(spm::parseLimits(text), spm::UsageError) << text;
    }
}

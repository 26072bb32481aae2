#include "spm/run/Comparison.h"

#include "common/CsvReader.h"
#include "spm/Error.h"
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
    spm::Run run;
    run.patches = {{.name = "B1", .reading = spm::Reading{{50, 0, 0}}},
                   {.name = "white", .reading = spm::Reading{{50, 0, 0}}},
                   {.name = "red", .reading = spm::Reading{{52, 0, 0}}},
                   {.name = "A2"}};
    run.reference.reset(new spm::Reference{.patches = {{"white", {50, -.5F, .25F}}, {"red", {50, 0, 0}}, {"A2", {}}},
                                           .limits = spm::parseLimits({"mean=1.5", "p95=1.9"})});
    const spm::Comparison comparison = spm::compare(run).value();
    EXPECT_EQ(comparison.coverage(), "2 of 3 patches compared");
    EXPECT_EQ(comparison.notInReference, std::vector<std::string>{"B1"});
    EXPECT_EQ(comparison.notMeasured, std::vector<std::string>{"A2"});
    EXPECT_EQ(spm::worstFirst(run).front().name, "red");
    EXPECT_FALSE(comparison.isWithinLimits);
    EXPECT_EQ(comparison.statistics[0].verdict(), " (at most 1.5: passed)");
    EXPECT_EQ(comparison.statistics[3].verdict(), " (at most 1.9: FAILED by 0.093)");
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
    EXPECT_EQ(spm::parseLimits({"p90=3.5", "max=0"}), (spm::Limits{{"max", 0}, {"p90", 3.5}}));
    for (const std::string text : {"", "mean", "mean=", "p99=2", "max=-1", "max=nan", "max=1e999", "max=2x"}) {
        EXPECT_THROW(spm::parseLimits({text}), spm::UsageError) << text;
    }
    EXPECT_THROW(spm::parseLimits({"mean=2", "mean=3"}), spm::UsageError);
}

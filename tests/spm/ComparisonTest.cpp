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
        EXPECT_NEAR(spm::deltaE(one, other), deltaE, 1e-4) << "pair " << pairs;
        EXPECT_NEAR(spm::deltaE(other, one), deltaE, 1e-4) << "pair " << pairs << " reversed";
    }
    EXPECT_EQ(pairs, 34);
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
    const SPM_LAB expected{50, 0, 0};
    spm::Run run;
    run.reference.reset(new spm::Reference{"chart.csv", {{"A1", expected}}});
    std::map<int, double> differences; // by lightness difference
    for (const int lightness : {19, 1, 18, 2, 17, 3, 16, 4, 15, 5, 14, 6, 13, 7, 12, 8, 11, 9, 10, 20}) {
        const SPM_LAB lab{static_cast<float>(50 + lightness), 0, 0};
        run.patches.push_back({.name = "A1", .reading = spm::Reading{lab}});
        differences[lightness] = spm::deltaE(lab, expected);
    }
    const auto statistics = [&] {
        const spm::Comparison comparison = spm::compare(run).value();
        std::vector<double> values;
        for (std::size_t i = 1; i < comparison.statistics.size(); ++i) { // without the mean
            values.push_back(comparison.statistics[i].value);
        }
        return values;
    };
    EXPECT_EQ(statistics(), (std::vector{(differences[10] + differences[11]) / 2, differences[18], differences[19],
                                         differences[20]}));
    run.patches.pop_back();
    EXPECT_EQ(statistics(), (std::vector{differences[10], differences[18], differences[19], differences[19]}));
}

TEST(Comparison, ParsesLimits) {
    EXPECT_EQ(spm::parseLimits({"p90=3.5", "max=0"}), (spm::Limits{{"max", 0}, {"p90", 3.5}}));
    for (const std::string text : {"", "mean", "mean=", "p99=2", "max=-1", "max=nan", "max=1e999", "max=2x"}) {
        EXPECT_THROW(spm::parseLimits({text}), spm::UsageError) << text;
    }
    EXPECT_THROW(spm::parseLimits({"mean=2", "mean=3"}), spm::UsageError);
}

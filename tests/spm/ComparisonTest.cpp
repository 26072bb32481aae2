#include "common/CsvReader.h"
#include "spm/formats/DeltaE.h"
#include "spm/formats/Reference.h"
#include "tests/support/Support.h"

#include <gtest/gtest.h>

namespace {

/// Patches with CIELab values that are grey.
spm::Run greys(const std::vector<std::pair<std::string, float>>& lightnesses) {
    spm::Run run;
    for (const auto& [name, lightness] : lightnesses) {
        run.readings.push_back({name, SPM_LAB{lightness, 0, 0}, {}});
    }
    return run;
}

const spm::Reference reference{"chart.csv", {{"A1", {50, 0, 0}}}};

} // namespace

// Table 1 of Sharma, Wu and Dalal, Color Research and Application 30 (2005), 21-30.
TEST(DeltaE, IsThatOfThePublishedPairs) {
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
        EXPECT_NEAR(spm::deltaE2000(one, other), deltaE, 1e-4) << "pair " << pairs;
        EXPECT_NEAR(spm::deltaE2000(other, one), deltaE, 1e-4) << "pair " << pairs << " reversed";
    }
    EXPECT_EQ(pairs, 34);
}

TEST(Comparison, MatchesByNameAndSumsUp) {
    const TempFolder folder;
    const std::filesystem::path file = folder / "reference.csv"; // as spreadsheets write it
    writeFile(file, "\xEF\xBB\xBF\"Name\",note,b,a*,LAB_L\r\n"
                    "white (.05\"),more,.25,-0.5,50\r\n"
                    "\r\n"
                    "\"red, \"\"signal\"\"\",,-0,0,\"50\"\n"
                    "A2,,0,0,5e1\n"
                    "\"\",,-500,500,0");
    spm::Run run = greys({{"B1", 50}, {"white (.05\")", 50}, {"red, \"signal\"", 52}});
    run.simulation = "simulated";
    run.readings.push_back({"A2", std::nullopt, {{380, 5}}});
    EXPECT_EQ(spm::formatComparison(spm::compare(run, spm::readReference(file))),
              "Compared with " + file.string() +
                  "\n"
                  "D65/10 degree, simulated CIEDE2000      dL*      da*      db*\n"
                  "red, \"signal\"                 1.99    +2.00    +0.00    +0.00\n"
                  "white (.05\")                  0.78    +0.00    +0.50    -0.25\n"
                  "\n"
                  "mean                          1.39\n"
                  "95th percentile               1.99   (nearest rank)\n"
                  "maximum                       1.99\n"
                  "Not compared, because not in the reference: \"B1\"\n"
                  "Not compared, because not measured: \"\", \"A2\"\n");
}

TEST(Comparison, TakesThe95thPercentileByNearestRank) {
    std::vector<std::pair<std::string, float>> patches(18, {"A1", 50});
    patches.emplace_back("A1", 60);
    const spm::Comparison of19 = spm::compare(greys(patches), reference);
    EXPECT_EQ(of19.percentile95, of19.maximum);
    patches.emplace_back("A1", 70);
    const spm::Comparison of20 = spm::compare(greys(patches), reference);
    EXPECT_EQ(of20.percentile95, of19.maximum) << "the second worst";
}

#include "simulator/Colour.h"

#include "tests/unit/SdkHost.h"

#include <gtest/gtest.h>

TEST(Colour, ComputesTheLightnessOfNeutralSamples) {
    const simulator::Weights weights = simulator::parseWeights(simulator::d65TenDegreeCsv);
    // L* is 116 f(Y) - 16, and 903.3 Y for dark samples.
    for (const auto& [factor, lightness] : {std::pair(1.0, 100.0), {0.18, 49.4961}, {0.008, 7.2263}, {0.0, 0.0}}) {
        simulator::Reflectance neutral;
        neutral.fill(factor);
        EXPECT_NEAR(simulator::cieLab(neutral, weights)[0], lightness, 1e-4);
    }
}

TEST(Colour, RejectsMalformedTables) {
    const std::string chart(simulator::colorCheckerCsv);
    const std::string header = chart.substr(0, chart.find('\n') + 1);
    const std::string factors = ",2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2";
    const std::vector<std::pair<std::string, std::string>> charts{
        {header + "patch" + factors, ""},
        {header, "t, line 1: there are no patches"},
        {header + "patch,0.1\n", "t, line 2: 2 fields; expected 37"},
        {header + "patch" + factors + "x", "t, line 2: \"2x\" is not a number from 0 to 2"},
        {header + "patch,-1" + factors.substr(2), "t, line 2: \"-1\" is not a number from 0 to 2"},
        {"name" + factors, "t, line 1: \"2\" is not the wavelength 380"},
    };
    for (const auto& [text, reason] : charts) {
        EXPECT_EQ(errorOf([&csv = text] { simulator::parseChart(csv, "t"); }), reason);
    }
    EXPECT_EQ(errorOf([] { simulator::parseWeights("nm,x,y,z\n380,1,1,1\n400,1,1,1\n"); }),
              "the weights, line 3: \"400\" is not the wavelength 390");
}

#include "simulator/Colour.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using simulator::Lab;
using simulator::Weight;

const simulator::Weights weights = simulator::parseWeights(simulator::d65TenDegreeCsv);

Weight sumOfWeights() {
    Weight sum{};
    for (const Weight& weight : weights) {
        sum = {sum.x + weight.x, sum.y + weight.y, sum.z + weight.z};
    }
    return sum;
}

} // namespace

TEST(Colour, OfKnownReflectances) {
    struct Case {
        double factor;
        double lightness;
    };
    // Of a neutral sample, L* depends on its factor alone: 116 f(Y) - 16, and 903.3 Y for dark ones.
    for (const Case each : {Case{1, 100}, Case{0.5, 76.0693}, Case{0.18, 49.4961}, Case{0.008, 7.2263}, Case{0, 0}}) {
        simulator::Reflectance neutral;
        neutral.fill(each.factor);
        const simulator::Lab lab = cieLab(neutral, weights);
        EXPECT_NEAR(lab.L, each.lightness, 1e-4);
        EXPECT_NEAR(lab.a, 0, 1e-9);
        EXPECT_NEAR(lab.b, 0, 1e-9);
    }
}

TEST(Colour, RejectsTablesThatAreNone) {
    const std::string header = "name,380\n";
    EXPECT_THROW(simulator::parseChart(header + "patch,0.1\n"), std::runtime_error);
    EXPECT_THROW(simulator::parseChart(header + "patch" + std::string(36 * 4, ',') + "\n"), std::runtime_error);
    EXPECT_THROW(simulator::parseChart(std::string(simulator::colorCheckerCsv) + ",0.5"), std::runtime_error);
    EXPECT_THROW(simulator::parseWeights("wavelength_nm,x,y,z\n390,1,1,1\n"), std::runtime_error);
}

TEST(Colour, HasTheWeightsOfTheCieTables) {
    struct Row {
        double d65;
        Weight matching;
    };
    // CIE 15:2004, tables T.1 (relative spectral power of D65) and T.5 (CIE 1964 colour-matching functions), 380 nm to
    // 730 nm.
    const std::array<Row, simulator::wavelengths> tables{{
        {49.9755, {0.00016, 1.7e-05, 0.000705}},   {54.6482, {0.002362, 0.000253, 0.010482}},
        {82.7549, {0.01911, 0.002004, 0.086011}},  {91.486, {0.084736, 0.008756, 0.389366}},
        {93.4318, {0.204492, 0.021391, 0.972542}}, {86.6823, {0.314679, 0.038676, 1.55348}},
        {104.865, {0.383734, 0.062077, 1.96728}},  {117.008, {0.370702, 0.089456, 1.9948}},
        {117.812, {0.302273, 0.128201, 1.74537}},  {114.861, {0.195618, 0.18519, 1.31756}},
        {115.923, {0.080507, 0.253589, 0.772125}}, {108.811, {0.016172, 0.339133, 0.415254}},
        {109.354, {0.003816, 0.460777, 0.218502}}, {107.802, {0.037465, 0.606741, 0.112044}},
        {104.79, {0.117749, 0.761757, 0.060709}},  {107.689, {0.236491, 0.875211, 0.030451}},
        {104.405, {0.376772, 0.961988, 0.013676}}, {104.046, {0.529826, 0.991761, 0.003988}},
        {100, {0.705224, 0.99734, 0.0}},           {96.3342, {0.878655, 0.955552, 0.0}},
        {95.788, {1.01416, 0.868934, 0.0}},        {88.6856, {1.11852, 0.777405, 0.0}},
        {90.0062, {1.12399, 0.658341, 0.0}},       {89.5991, {1.03048, 0.527963, 0.0}},
        {87.6987, {0.856297, 0.398057, 0.0}},      {83.2886, {0.647467, 0.283493, 0.0}},
        {83.6992, {0.431567, 0.179828, 0.0}},      {80.0268, {0.268329, 0.107633, 0.0}},
        {80.2146, {0.152568, 0.060281, 0.0}},      {82.2778, {0.081261, 0.0318, 0.0}},
        {78.2842, {0.040851, 0.015905, 0.0}},      {69.7213, {0.019941, 0.007749, 0.0}},
        {71.6091, {0.009577, 0.003718, 0.0}},      {74.349, {0.004553, 0.001768, 0.0}},
        {61.604, {0.002175, 0.000846, 0.0}},       {69.8856, {0.001045, 0.000407, 0.0}},
    }};
    double y = 0;
    for (const Row& row : tables) {
        y += row.d65 * row.matching.y;
    }
    // What lies outside is in the ends; it also makes the sum of y greater by some hundred-thousandths.
    const auto expectNear = [](double weight, double expected) {
        EXPECT_NEAR(weight, expected, 5e-5 * expected + 5e-6);
    };
    for (std::size_t i = 1; i + 1 < tables.size(); ++i) {
        const double scale = 100 * tables[i].d65 / y;
        expectNear(weights[i].x, scale * tables[i].matching.x);
        expectNear(weights[i].y, scale * tables[i].matching.y);
        expectNear(weights[i].z, scale * tables[i].matching.z);
    }
}

TEST(Colour, HasTheReferenceWhiteOfD65ForTenDegree) {
    const Weight white = sumOfWeights();
    // ASTM E308, table 5; steps of 10 nm and fewer digits leave some hundredths.
    EXPECT_NEAR(white.x, 94.811, 0.02);
    EXPECT_NEAR(white.y, 100, 1e-5);
    EXPECT_NEAR(white.z, 107.304, 0.08);
}

TEST(Colour, OfTheChartsPatches) {
    // Calculated once by a program of its own from the same factors and weights.
    const std::vector<Lab> expected{
        {36.804, 13.894, 14.683},   // dark skin
        {65.805, 13.419, 17.736},   // light skin
        {51.616, -3.778, -20.203},  // blue sky
        {42.063, -12.297, 21.837},  // foliage
        {57.459, 6.718, -23.144},   // blue flower
        {71.700, -30.207, 3.685},   // bluish green
        {59.551, 33.735, 54.931},   // orange
        {42.707, 7.621, -39.139},   // purplish blue
        {50.463, 42.438, 13.985},   // moderate red
        {31.265, 20.285, -22.428},  // purple
        {70.653, -19.755, 58.030},  // yellow green
        {69.932, 20.124, 64.074},   // orange yellow
        {32.577, 13.388, -46.669},  // blue
        {54.801, -34.181, 34.875},  // green
        {40.250, 48.543, 24.309},   // red
        {79.922, 4.301, 79.357},    // yellow
        {51.339, 42.883, -15.577},  // magenta
        {53.434, -30.180, -22.084}, // cyan
        {95.455, -0.493, 1.032},    // white 9.5 (.05 D)
        {80.941, 0.150, 0.174},     // neutral 8 (.23 D)
        {66.376, 0.084, -0.084},    // neutral 6.5 (.44 D)
        {52.182, 0.081, -0.064},    // neutral 5 (.70 D)
        {36.499, -0.159, -0.474},   // neutral 3.5 (1.05 D)
        {21.427, -0.080, -0.930},   // black 2 (1.5 D)
    };
    const std::vector<simulator::Patch> chart = simulator::parseChart(simulator::colorCheckerCsv);
    ASSERT_EQ(chart.size(), expected.size());
    for (std::size_t i = 0; i < chart.size(); ++i) {
        const Lab lab = cieLab(chart[i].reflectance, weights);
        EXPECT_NEAR(lab.L, expected[i].L, 0.0006) << chart[i].name;
        EXPECT_NEAR(lab.a, expected[i].a, 0.0006) << chart[i].name;
        EXPECT_NEAR(lab.b, expected[i].b, 0.0006) << chart[i].name;
    }
}

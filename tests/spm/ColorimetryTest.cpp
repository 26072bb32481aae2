#include "spm/colour/Colorimetry.h"

#include "common/CsvReader.h"
#include "spm/Error.h"
#include "spm/formats/Reference.h"
#include "tests/support/Support.h"

#include <gtest/gtest.h>

// CIE 015:2018, tristimulus values of the illuminants.
TEST(Colorimetry, MatchesPublishedWhitePoints) {
    const std::vector<std::pair<spm::Conditions, spm::Xyz>> whites{
        {{"A", 2}, {109.85, 100, 35.58}},  {{"D50", 2}, {96.42, 100, 82.51}},  {{"D65", 2}, {95.04, 100, 108.88}},
        {{"A", 10}, {111.14, 100, 35.20}}, {{"D50", 10}, {96.72, 100, 81.43}}, {{"D65", 10}, {94.81, 100, 107.32}}};
    for (const auto& [conditions, published] : whites) {
        const spm::Xyz white = spm::whitePoint(conditions);
        for (std::size_t i = 0; i < white.size(); ++i) {
            EXPECT_NEAR(white[i], published[i], 0.005) << conditions.illuminant << '/' << conditions.observer;
        }
    }
}

// The expected values are calculated with published weights at 10 nm, as in the simulated instrument.
TEST(Colorimetry, AgreesWithPublishedWeights) {
    const std::string chart = readFile(SOURCE_FOLDER "/simulator/data/colorchecker24.csv");
    common::CsvReader csv(chart, "the chart");
    csv.next();
    const spm::Reference expected = spm::readReference(SOURCE_FOLDER "/tests/unit/data/colorchecker24_lab.csv");
    while (const auto fields = csv.next()) {
        std::vector<SPM_REFLECTION> spectrum;
        for (int i = 0; i < 36; ++i) {
            spectrum.push_back({380 + 10 * i, 100 * std::stof(fields->at(static_cast<std::size_t>(i) + 1))});
        }
        const SPM_LAB lab = spm::toLab(spectrum, {});
        const SPM_LAB published = expected.patches.at(fields->front());
        EXPECT_NEAR(lab.L, published.L, 0.05) << fields->front();
        EXPECT_NEAR(lab.a, published.a, 0.05) << fields->front();
        EXPECT_NEAR(lab.b, published.b, 0.05) << fields->front();
    }
}

TEST(Colorimetry, RejectsOtherWavelengths) {
    for (const std::vector<SPM_REFLECTION>& spectrum :
         {std::vector<SPM_REFLECTION>{}, {{390, 1}, {400, 1}}, {{380, 1}, {400, 1}}}) {
        EXPECT_THROW(spm::toLab(spectrum, {}), spm::Error);
    }
}

#include "spm/colour/Colorimetry.h"

#include "spm/Error.h"

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

// The spectrum ends before the observer's sensitivity, and L* is linear for patches this dark.
TEST(Colorimetry, KeepsDarkNeutralSpectraNeutral) {
    std::vector<SPM_REFLECTION> spectrum;
    for (int wavelength = 380; wavelength <= 730; wavelength += 10) {
        spectrum.push_back({wavelength, 0.8F});
    }
    const SPM_LAB lab = spm::toLab(spectrum, {"A", 2});
    EXPECT_NEAR(lab.L, 7.2263, 1e-4);
    EXPECT_NEAR(lab.a, 0, 1e-4);
    EXPECT_NEAR(lab.b, 0, 1e-4);
}

TEST(Colorimetry, RejectsOtherWavelengths) {
    for (const std::vector<SPM_REFLECTION>& spectrum :
         {std::vector<SPM_REFLECTION>{}, {{390, 1}, {400, 1}}, {{380, 1}, {400, 1}}}) {
        EXPECT_THROW(spm::toLab(spectrum, {}), spm::Error);
    }
}

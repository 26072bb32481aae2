#pragma once

#include "spm/formats/Reference.h"

/// Simulated rows: values of all kinds, patches with only some of them or none, and names with characters that are
/// special in one of the formats.
inline spm::Run simulatedRows() {
    return {.started = "2026-11-23T09:30:00Z",
            .module = "C:\\new\\spm.dll",
            .version = "5.9.0.3",
            .simulation = "simulated \"i1\" & 24 patches",
            .patchesInRow = 2,
            .instrument = "i1",
            .conditions = {"D50", 2, true, "UV, \"in\""},
            .readings = {{"gr\xC3\xBCn", SPM_LAB{53.24F, -80.09F, 67.2F}, {{730, 120}, {380, 33.333333F}}},
                         {"a \"b\", 'c' <&>", std::nullopt, {{380, 0.00004F}, {730, 101}}},
                         {"", SPM_LAB{0, 12.34567F, -100}, {}, "spectra: skipped"},
                         {"x", std::nullopt, {}, "skipped: lamp, \"7\""},
                         {"d\ne\tf\rg\x1F\x7F", SPM_LAB{50, 80, 60}, {{380, 4.8F}, {730, 100.5F}}}}};
}

/// A measured spot: a spectrum with values from below 0 to above 100 percent, and a name that is not UTF-8.
inline spm::Run measuredSpots() {
    return {.started = "2026-11-23T09:30:00Z",
            .module = "/opt/spm.so",
            .version = "3",
            .simulation = "",
            .patchesInRow = 0,
            .instrument = "i1 Pro3",
            .readings = {{"gr\xFCn",
                          std::nullopt,
                          {{330, -5}, {380, 0}, {390, 12.4F}, {400, 12.5F}, {410, 50}, {420, 87.5F}, {890, 1e6F}}}}};
}

/// Two measured spots, one of them with an expected value.
inline spm::Run comparedSpots() {
    spm::Run run;
    run.readings = {{"b", SPM_LAB{90, 0, 0}, {}}, {"a", SPM_LAB{50, 3, 0}, {}}};
    run.reference.reset(new spm::Reference{
        "r.csv", {{"a", {50, 0, 4}}, {"c", {1, 2, 3}}}, spm::Formula::cie76, {{"max", 4}, {"mean", 5.5}}});
    return run;
}

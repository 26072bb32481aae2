#pragma once

#include "spm/run/Comparison.h"

/// Simulated rows with all kinds of values: spectra, X, Y and Z, device values, patches that were not measured, and
/// texts with characters that are special in one of the formats.
inline spm::Run simulatedRows() {
    return {.started = "2026-11-23T09:30:00Z",
            .module = "C:\\new\\spm.dll",
            .version = "7.8",
            .instrument = "i1",
            .simulation = "simulated i1 & 24 patches",
            .conditions = {"D50", 2, true, "UV, in"},
            .withXyz = true,
            .chart = "chart & co.cgats",
            .chartColumns = {"SAMPLE_ID", "CMYK_C", "6CLR_6"},
            .patchesInRow = 2,
            .patches = {
                {"gr\xC3\xBCn", {"A10", "100", "0"}, "", {{{53.24F, -80.09F, 67.2F}, {{380, 33.333333F}, {730, 120}}}}},
                {"a, 'c' <&>", {"A2", "0.50", "7"}, "", {}, "skipped: lamp, 7"},
                {"d # e", {"A 1", "0", "1e2"}, "", {{{0, 12.34567F, -100}, {{380, 0.00004F}, {730, 101}}}}},
                {"x,no,y", {"B1", "0", "0"}, "", {}, "not reached"}}};
}

/// Spots measured with an instrument, one of them with an expected value, and a name that CGATS can't contain.
inline spm::Run measuredSpots() {
    spm::Run run{.started = "2026-11-23T09:30:00Z", .module = "/opt/spm.so", .version = "3", .instrument = "i1 Pro3"};
    run.patches = {{.name = "b\n\"2\", <&>", .reading = spm::Reading{{90, 0, 0}}},
                   {.name = "a", .reading = spm::Reading{{50, 3, 0}}}};
    run.reference.reset(new spm::Reference{"r.csv", {{"a", {50, 0, 4}}, {"c", {1, 2, 3}}}, {{"max", 4}, {"mean", 6}}});
    return run;
}

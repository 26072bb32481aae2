#include "host/Formats.h"

#include "host/HostError.h"
#include "tests/support/Support.h"

#include <gtest/gtest.h>
#include <limits>
#include <regex>

namespace {

using host::Reading;
using Texts = std::vector<std::string>;

/// A run on an instrument.
host::Run runOf(std::vector<Reading> readings) {
    return {.started = "2026-11-23T09:30:00Z",
            .module = "C:\\spm.dll",
            .version = 3,
            .simulation = "",
            .patchesInRow = 0,
            .readings = std::move(readings)};
}

/// A run on a simulated one.
host::Run simulatedRunOf(std::vector<Reading> readings) {
    host::Run run = runOf(std::move(readings));
    run.simulation = "simulated \"i1\", 24 patches";
    run.patchesInRow = 2;
    return run;
}

const Reading white{"white", SPM_LAB{95.45F, -0.49F, 1.03F}, {}};
const Reading dark{"dark", SPM_LAB{0, 12.34567F, -100}, {}};
const Reading red{"red", std::nullopt, {{380, 4.8F}, {730, 100.5F}}};
const Reading all{"all", SPM_LAB{50, 1, -2}, {{730, 0.00004F}, {380, 33.333333F}}};

std::string onOneLine(const std::string& json) {
    return std::regex_replace(json, std::regex("\n *"), "");
}

std::string messageOf(std::string (*format)(const host::Run&), const host::Run& run) {
    try {
        return "no error, but: " + format(run);
    } catch (const host::HostError& error) {
        return error.what();
    }
}

} // namespace

TEST(Formats, AreExact) {
    struct Case {
        host::Run run;
        std::string csv;
        std::string json;
        std::string cgats;
    };
    const std::string made = R"({"started": "2026-11-23T09:30:00Z","module": "C:\\spm.dll","version": 3,)";
    const std::string origin = "CGATS.17\nORIGINATOR\t\"spm\"\nFILE_DESCRIPTOR\t\"Measured colours\"\n";
    const std::string created = "CREATED\t\"2026-11-23T09:30:00Z\"\n";
    const std::string instrument = "INSTRUMENTATION\t\"module C:\\spm.dll, version 3\"\n";
    const std::string simulated =
        "INSTRUMENTATION\t\"simulated: simulated 'i1', 24 patches; module C:\\spm.dll, version 3\"\n";
    const std::string weights = "WEIGHTING_FUNCTION\t\"ILLUMINANT, D65\"\nWEIGHTING_FUNCTION\t\"OBSERVER, 10 degree\"\n"
                                "KEYWORD\t\"ILLUMINATION_NAME\"\nILLUMINATION_NAME\t\"D65\"\n"
                                "KEYWORD\t\"OBSERVER_ANGLE\"\nOBSERVER_ANGLE\t\"10\"\n";
    const std::string norm = "KEYWORD\t\"SPECTRAL_NORM\"\nSPECTRAL_NORM\t\"1.0\"\n";
    const std::vector<Case> cases{
        {simulatedRunOf({white, dark}),
         "name,L*,a*,b*,illuminant,observer,simulated\n"
         "white,95.4500,-0.4900,1.0300,D65,10 degree,\"simulated \"\"i1\"\", 24 patches\"\n"
         "dark,0.0000,12.3457,-100.0000,D65,10 degree,\"simulated \"\"i1\"\", 24 patches\"\n",
         made + R"("simulated": "simulated \"i1\", 24 patches","illuminant": "D65","observer": "10 degree",)"
                R"("patchesInRow": 2,"readings": [{"name": "white","lab": {"L": 95.45,"a": -0.49,"b": 1.03}},)"
                R"({"name": "dark","lab": {"L": 0.0,"a": 12.34567,"b": -100.0}}]})",
         origin + "DESCRIPTOR\t\"patches: 2 in rows of 2\"\n" + created + simulated + weights +
             "NUMBER_OF_FIELDS\t5\nBEGIN_DATA_FORMAT\nSAMPLE_ID\tSAMPLE_NAME\tLAB_L\tLAB_A\tLAB_B\nEND_DATA_FORMAT\n"
             "NUMBER_OF_SETS\t2\nBEGIN_DATA\n"
             "1\t\"white\"\t95.4500\t-0.4900\t1.0300\n2\t\"dark\"\t0.0000\t12.3457\t-100.0000\nEND_DATA\n"},
        {runOf({red}), "name,nm380_percent,nm730_percent,simulated\nred,4.8000,100.5000,no\n",
         made + R"("simulated": null,"illuminant": null,"observer": null,"patchesInRow": 0,)"
                R"("readings": [{"name": "red","reflectancePercent": {"380": 4.8,"730": 100.5}}]})",
         origin + "DESCRIPTOR\t\"patches: 1\"\n" + created + instrument + norm +
             "NUMBER_OF_FIELDS\t4\nBEGIN_DATA_FORMAT\nSAMPLE_ID\tSAMPLE_NAME\tSPECTRAL_NM380\tSPECTRAL_NM730\n"
             "END_DATA_FORMAT\nNUMBER_OF_SETS\t1\nBEGIN_DATA\n1\t\"red\"\t0.048000\t1.005000\nEND_DATA\n"},
        {runOf({all}),
         "name,L*,a*,b*,nm380_percent,nm730_percent,illuminant,observer,simulated\n"
         "all,50.0000,1.0000,-2.0000,33.3333,0.0000,D65,10 degree,no\n",
         made + R"("simulated": null,"illuminant": "D65","observer": "10 degree","patchesInRow": 0,)"
                R"("readings": [{"name": "all","lab": {"L": 50.0,"a": 1.0,"b": -2.0},)"
                R"("reflectancePercent": {"730": 4e-05,"380": 33.333332}}]})",
         origin + "DESCRIPTOR\t\"patches: 1\"\n" + created + instrument + weights + norm +
             "NUMBER_OF_FIELDS\t7\nBEGIN_DATA_FORMAT\n"
             "SAMPLE_ID\tSAMPLE_NAME\tLAB_L\tLAB_A\tLAB_B\tSPECTRAL_NM380\tSPECTRAL_NM730\nEND_DATA_FORMAT\n"
             "NUMBER_OF_SETS\t1\nBEGIN_DATA\n1\t\"all\"\t50.0000\t1.0000\t-2.0000\t0.333333\t0.000000\nEND_DATA\n"},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(host::formatCsv(each.run), each.csv);
        EXPECT_EQ(onOneLine(host::formatJson(each.run)), each.json);
        EXPECT_EQ(host::formatCgats(each.run), each.cgats);
    }
}

TEST(Formats, KeepTextsInTheirPlace) {
    struct Case {
        std::string name;
        std::string csv;
        std::string json;
        std::string cgats;
    };
    const std::vector<Case> cases{
        {"", "", R"("")", R"("-")"},
        {"white 9.5 (.05 D)", "white 9.5 (.05 D)", "\"white 9.5 (.05 D)\"", "\"white 9.5 (.05 D)\""},
        {"a \"b\"", R"("a ""b""")", R"("a \"b\"")", R"("a 'b'")"},
        {"a, b", R"("a, b")", R"("a, b")", R"("a, b")"},
        {"a\nb", "\"a\nb\"", R"("a\nb")", R"("a b")"},
        {"a\rb", "\"a\rb\"", R"("a\rb")", R"("a b")"},
        {"a\tb\x7F", "a\tb\x7F", "\"a\\tb\x7F\"", R"("a b ")"},
        {"gr\xC3\xBCn", "gr\xC3\xBCn", "\"gr\xC3\xBCn\"", "\"gr\xC3\xBCn\""},
        {"gr\xFCn", "gr\xFCn", "\"gr\xEF\xBF\xBDn\"", "\"gr\xFCn\""},
    };
    for (const Case& each : cases) {
        const host::Run run = runOf({{each.name, SPM_LAB{50, 0, 0}, {}}});
        const std::string csv = host::formatCsv(run);
        const std::string json = host::formatJson(run);
        const std::string cgats = host::formatCgats(run);
        EXPECT_NE(csv.find("simulated\n" + each.csv + ",50.0000,"), std::string::npos) << csv;
        EXPECT_NE(json.find("\"name\": " + each.json + ",\n"), std::string::npos) << json;
        EXPECT_NE(cgats.find("BEGIN_DATA\n1\t" + each.cgats + "\t50.0000\t"), std::string::npos) << cgats;
    }
}

TEST(Formats, TellWhatNotAllReadingsHave) {
    const host::Run run = runOf({white, all});
    EXPECT_EQ(host::formatCsv(run), "name,L*,a*,b*,nm380_percent,nm730_percent,illuminant,observer,simulated\n"
                                    "white,95.4500,-0.4900,1.0300,,,D65,10 degree,no\n"
                                    "all,50.0000,1.0000,-2.0000,33.3333,0.0000,D65,10 degree,no\n");
    EXPECT_EQ(host::formatCsv(runOf({white, red})),
              "name,L*,a*,b*,nm380_percent,nm730_percent,illuminant,observer,simulated\n"
              "white,95.4500,-0.4900,1.0300,,,D65,10 degree,no\n"
              "red,,,,4.8000,100.5000,D65,10 degree,no\n");

    const std::string cgats = host::formatCgats(runOf({white, all, red, dark}));
    const std::string others = " of 4; those with other values stand in tables of their own\"\n";
    Texts descriptors;
    Texts data;
    for (const std::string& line : linesOf(cgats)) {
        if (line.starts_with("DESCRIPTOR")) descriptors.push_back(line + '\n');
        if (line.starts_with("SAMPLE_ID") || line.find_first_of("1234") == 0) data.push_back(line);
    }
    EXPECT_EQ(descriptors, (Texts{"DESCRIPTOR\t\"patches: 1" + others, "DESCRIPTOR\t\"patches: 2" + others,
                                  "DESCRIPTOR\t\"patches: 1" + others}));
    EXPECT_EQ(data,
              (Texts{"SAMPLE_ID\tSAMPLE_NAME\tLAB_L\tLAB_A\tLAB_B\tSPECTRAL_NM380\tSPECTRAL_NM730",
                     "2\t\"all\"\t50.0000\t1.0000\t-2.0000\t0.333333\t0.000000",
                     "SAMPLE_ID\tSAMPLE_NAME\tLAB_L\tLAB_A\tLAB_B", "1\t\"white\"\t95.4500\t-0.4900\t1.0300",
                     "4\t\"dark\"\t0.0000\t12.3457\t-100.0000",
                     "SAMPLE_ID\tSAMPLE_NAME\tSPECTRAL_NM380\tSPECTRAL_NM730", "3\t\"red\"\t0.048000\t1.005000"}));
}

TEST(Formats, RefuseWhatIsNoValue) {
    struct Case {
        std::vector<Reading> readings;
        std::string message;
    };
    const float none = std::numeric_limits<float>::quiet_NaN();
    const float infinite = std::numeric_limits<float>::infinity();
    const std::vector<Case> cases{
        {{}, "there are no readings to write; measure at least one patch"},
        {{white, {"blank", std::nullopt, {}}}, "the patch \"blank\" has no values; measure it again"},
        {{white, {"x", SPM_LAB{none, 0, 0}, {}}}, "the patch \"x\" has no finite number for L*: nan; measure it again"},
        {{{"x", SPM_LAB{0, -infinite, 0}, {}}}, "the patch \"x\" has no finite number for a*: -inf; measure it again"},
        {{{"x", SPM_LAB{0, 0, none}, {}}, white}, "the patch \"x\" has no finite number for b*: nan; measure it again"},
        {{{"x", std::nullopt, {{380, 1}, {730, infinite}}}},
         "the patch \"x\" has no finite number for 730 nm: inf; measure it again"},
    };
    for (const Case& each : cases) {
        for (const auto format : {host::formatCsv, host::formatJson, host::formatCgats}) {
            EXPECT_EQ(messageOf(format, runOf(each.readings)), each.message);
        }
    }
}

#include "host/DeltaE.h"
#include "host/HostError.h"
#include "host/Reference.h"
#include "tests/support/Support.h"

#include <cmath>
#include <fmt/format.h>
#include <functional>
#include <gtest/gtest.h>
#include <limits>

namespace {

using Names = std::vector<std::string>;

/// The message of the failure; empty when there is none.
std::string failureOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const host::HostError& error) {
        return error.what();
    }
    return {};
}

host::Reading reading(const std::string& name, const SPM_LAB& lab) {
    return {name, lab, {}};
}

host::Run runOf(std::vector<host::Reading> readings) {
    host::Run run;
    run.readings = std::move(readings);
    return run;
}

/// Greys around L* 50, where a difference of 1 in L* is one in CIEDE2000 as well, but for 0.1 %.
SPM_LAB grey(float lightness) {
    return {lightness, 0, 0};
}

} // namespace

// Table 1 of Sharma, Wu and Dalal, Color Research and Application 30 (2005), 21-30.
TEST(DeltaE, IsThatOfThePublishedPairs) {
    struct Case {
        SPM_LAB sample;
        SPM_LAB reference;
        double deltaE;
    };
    const std::vector<Case> cases{
        {{50.0000F, 2.6772F, -79.7751F}, {50.0000F, 0.0000F, -82.7485F}, 2.0425},
        {{50.0000F, 3.1571F, -77.2803F}, {50.0000F, 0.0000F, -82.7485F}, 2.8615},
        {{50.0000F, 2.8361F, -74.0200F}, {50.0000F, 0.0000F, -82.7485F}, 3.4412},
        {{50.0000F, -1.3802F, -84.2814F}, {50.0000F, 0.0000F, -82.7485F}, 1.0000},
        {{50.0000F, -1.1848F, -84.8006F}, {50.0000F, 0.0000F, -82.7485F}, 1.0000},
        {{50.0000F, -0.9009F, -85.5211F}, {50.0000F, 0.0000F, -82.7485F}, 1.0000},
        {{50.0000F, 0.0000F, 0.0000F}, {50.0000F, -1.0000F, 2.0000F}, 2.3669},
        {{50.0000F, -1.0000F, 2.0000F}, {50.0000F, 0.0000F, 0.0000F}, 2.3669},
        {{50.0000F, 2.4900F, -0.0010F}, {50.0000F, -2.4900F, 0.0009F}, 7.1792},
        {{50.0000F, 2.4900F, -0.0010F}, {50.0000F, -2.4900F, 0.0010F}, 7.1792},
        {{50.0000F, 2.4900F, -0.0010F}, {50.0000F, -2.4900F, 0.0011F}, 7.2195},
        {{50.0000F, 2.4900F, -0.0010F}, {50.0000F, -2.4900F, 0.0012F}, 7.2195},
        {{50.0000F, -0.0010F, 2.4900F}, {50.0000F, 0.0009F, -2.4900F}, 4.8045},
        {{50.0000F, -0.0010F, 2.4900F}, {50.0000F, 0.0010F, -2.4900F}, 4.8045},
        {{50.0000F, -0.0010F, 2.4900F}, {50.0000F, 0.0011F, -2.4900F}, 4.7461},
        {{50.0000F, 2.5000F, 0.0000F}, {50.0000F, 0.0000F, -2.5000F}, 4.3065},
        {{50.0000F, 2.5000F, 0.0000F}, {73.0000F, 25.0000F, -18.0000F}, 27.1492},
        {{50.0000F, 2.5000F, 0.0000F}, {61.0000F, -5.0000F, 29.0000F}, 22.8977},
        {{50.0000F, 2.5000F, 0.0000F}, {56.0000F, -27.0000F, -3.0000F}, 31.9030},
        {{50.0000F, 2.5000F, 0.0000F}, {58.0000F, 24.0000F, 15.0000F}, 19.4535},
        {{50.0000F, 2.5000F, 0.0000F}, {50.0000F, 3.1736F, 0.5854F}, 1.0000},
        {{50.0000F, 2.5000F, 0.0000F}, {50.0000F, 3.2972F, 0.0000F}, 1.0000},
        {{50.0000F, 2.5000F, 0.0000F}, {50.0000F, 1.8634F, 0.5757F}, 1.0000},
        {{50.0000F, 2.5000F, 0.0000F}, {50.0000F, 3.2592F, 0.3350F}, 1.0000},
        {{60.2574F, -34.0099F, 36.2677F}, {60.4626F, -34.1751F, 39.4387F}, 1.2644},
        {{63.0109F, -31.0961F, -5.8663F}, {62.8187F, -29.7946F, -4.0864F}, 1.2630},
        {{61.2901F, 3.7196F, -5.3901F}, {61.4292F, 2.2480F, -4.9620F}, 1.8731},
        {{35.0831F, -44.1164F, 3.7933F}, {35.0232F, -40.0716F, 1.5901F}, 1.8645},
        {{22.7233F, 20.0904F, -46.6940F}, {23.0331F, 14.9730F, -42.5619F}, 2.0373},
        {{36.4612F, 47.8580F, 18.3852F}, {36.2715F, 50.5065F, 21.2231F}, 1.4146},
        {{90.8027F, -2.0831F, 1.4410F}, {91.1528F, -1.6435F, 0.0447F}, 1.4441},
        {{90.9257F, -0.5406F, -0.9208F}, {88.6381F, -0.8985F, -0.7239F}, 1.5381},
        {{6.7747F, -0.2908F, -2.4247F}, {5.8714F, -0.0985F, -2.2286F}, 0.6377},
        {{2.0776F, 0.0795F, -1.1350F}, {0.9033F, -0.0636F, -0.5514F}, 0.9082},
    };
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const Case& each = cases[i];
        EXPECT_NEAR(host::deltaE2000(each.sample, each.reference), each.deltaE, 1e-4) << "pair " << i + 1;
        EXPECT_NEAR(host::deltaE2000(each.reference, each.sample), each.deltaE, 1e-4)
            << "pair " << i + 1 << " reversed";
    }
}

TEST(Reference, IsReadAsSpreadsheetsWriteIt) {
    const TempFolder folder;
    writeFile(folder / "reference.csv", "\xEF\xBB\xBF\"name, place\",L*,a*,b*\r\n"
                                        "white 9.5 (.05\"),95.45,-0.49,1e0\r\n"
                                        "\r\n"
                                        "\"red, \"\"signal\"\"\",\"40\",60.5,-.25\n"
                                        "\"\",0,0,0");
    const host::Reference reference = host::readReference(folder / "reference.csv");
    std::string text;
    for (const auto& [name, lab] : reference.patches) {
        text += fmt::format("{}|{}|{}|{}\n", name, lab.L, lab.a, lab.b);
    }
    EXPECT_EQ(text, "|0|0|0\nred, \"signal\"|40|60.5|-0.25\nwhite 9.5 (.05\")|95.45|-0.49|1\n");
}

TEST(Reference, SaysWhatIsWrongAndWhere) {
    struct Case {
        std::string content;
        std::string message;
    };
    const std::string header = "name,L*,a*,b*\n";
    const std::vector<Case> cases{
        {"", " has no patches; "},
        {header + "\n", " has no patches; "},
        {"name;L*;a*;b*\n", ", line 1: the number of fields is 1, but 4 belong there, separated by commas: "},
        {"A1,1,2,3\n", ", line 1: the header name,L*,a*,b* is missing; "},
        {header + "A1,1,2,3\n\nA2,1,2\n", ", line 4: the number of fields is 3, "},
        {"name,nm380,nm390,nm400\nA1,1,2,3\n", ", line 1: the header name,L*,a*,b* is missing; "},
        {header + "A1,1,2,\n", ", line 2: \"\" is not a number from -500 to 500; "},
        {header + "A1,1,\"2,5\",3\n", ", line 2: \"2,5\" is not a number "},
        {header + "A1,1,2,500.1\n", ", line 2: \"500.1\" is not a number "},
        {header + "A1,-501,2,3\n", ", line 2: \"-501\" is not a number "},
        {header + "A1,nan,2,3\n", ", line 2: \"nan\" is not a number "},
        {header + "A1,1,2,3\n\"A1\",1,2,3\n", ", line 3: \"A1\" is the name of an earlier patch, too; "},
        {header + "\"A1,1,2,3\n", ", line 2: a quote is not closed; "},
        {header + "\"A1\" red,1,2,3\n", ", line 2: text follows a closing quote; "},
    };
    const TempFolder folder;
    const std::filesystem::path file = folder / "reference.csv";
    const auto read = [&] { host::readReference(file); };
    EXPECT_TRUE(failureOf(read).starts_with("can't read the reference file " + file.string() + "; "));
    for (const Case& each : cases) {
        writeFile(file, each.content);
        const std::string message = failureOf(read);
        EXPECT_TRUE(message.starts_with("the reference file " + file.string() + each.message))
            << message << " where expected was " << each.message;
    }
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    EXPECT_TRUE(failureOf(read).starts_with("can't read the reference file ")) << "a folder is no file";
}

TEST(Comparison, MatchesByNameAndSumsUp) {
    // A2's reading has no CIELab values. By hand: SL is 1 + 0.015 * 1 / sqrt(21) = 1.003273 for two greys of L* 50 and
    // 52, so the difference is 2 / SL = 1.993475; for 50 and 54 it is 4 / (1 + 0.06 / sqrt(24)) = 3.951603.
    const host::Reference reference{"chart.csv",
                                    {{"A1", grey(50)}, {"A2", grey(50)}, {"A3", grey(50)}, {"A4", grey(50)}}};
    const host::Run run = runOf({reading("B1", grey(50)),
                                 reading("A4", grey(50)),
                                 reading("A1", grey(52)),
                                 reading("A3", grey(54)),
                                 {"A2", std::nullopt, {{380, 5.0F}}}});
    const host::Comparison comparison = host::compare(run, reference);
    EXPECT_NEAR(comparison.mean, (1.993475 + 3.951603) / 3, 1e-6);
    EXPECT_NEAR(comparison.maximum, 3.951603, 1e-6);
    EXPECT_EQ(comparison.notInReference, Names{"B1"});
    EXPECT_EQ(comparison.notMeasured, Names{"A2"});
    EXPECT_EQ(host::formatComparison(comparison),
              "Compared with chart.csv\n"
              "                         CIEDE2000      dL*      da*      db*   (D65, 10 degree)\n"
              "A3                            3.95    +4.00    +0.00    +0.00\n"
              "A1                            1.99    +2.00    +0.00    +0.00\n"
              "A4                            0.00    +0.00    +0.00    +0.00\n"
              "\n"
              "mean                          1.98\n"
              "95th percentile               3.95   (nearest rank)\n"
              "maximum                       3.95\n"
              "Not compared, because not in the reference: \"B1\"\n"
              "Not compared, because not measured: \"A2\"\n");
    const host::Comparison whole = host::compare(runOf({reading("A1", grey(50))}), {"chart.csv", {{"A1", grey(50)}}});
    EXPECT_TRUE(host::formatComparison(whole).ends_with("   (nearest rank)\nmaximum                       0.00\n"));
}

TEST(Comparison, TakesThe95thPercentileByNearestRank) {
    struct Case {
        int count;
        std::size_t fromTheWorst;
    };
    const host::Reference reference{"chart.csv", {{"A1", grey(50)}}};
    for (const Case& each : {Case{1, 0}, Case{19, 0}, Case{20, 1}, Case{21, 1}, Case{39, 1}, Case{40, 2}}) {
        std::vector<host::Reading> readings;
        for (int i = 0; i < each.count; ++i) {
            readings.push_back(reading("A1", grey(50 + static_cast<float>(i))));
        }
        const host::Comparison comparison = host::compare(runOf(readings), reference);
        EXPECT_EQ(comparison.percentile95, comparison.patches[each.fromTheWorst].deltaE) << each.count;
    }
}

TEST(Comparison, PutsWhatIsNoNumberFirst) {
    const host::Reference reference{"chart.csv", {{"A1", grey(50)}, {"A2", grey(50)}, {"A3", grey(50)}}};
    const host::Run run = runOf({reading("A1", grey(52)), reading("A2", grey(-std::numeric_limits<float>::quiet_NaN())),
                                 reading("A3", grey(54))});
    const host::Comparison comparison = host::compare(run, reference);
    EXPECT_EQ(comparison.patches[0].name, "A2");
    EXPECT_EQ(comparison.patches[1].name, "A3");
    EXPECT_TRUE(std::isnan(comparison.maximum));
}

TEST(Comparison, NeedsAPatchOnBothSides) {
    const host::Reference reference{"chart.csv", {{"A1", grey(50)}}};
    EXPECT_EQ(failureOf([&] {
                  host::compare(runOf({{"A1", std::nullopt, {{380, 5.0F}}}}), reference);
              }),
              "no CIELab values were measured to compare with the reference file chart.csv; measure the chart's rows");
    EXPECT_EQ(
        failureOf([&] { host::compare(runOf({reading("patch 1", grey(50))}), reference); }),
        "no patch has the name of one in the reference file chart.csv: measured was \"patch 1\", the reference has "
        "\"A1\"; name the patches as the reference does");
}

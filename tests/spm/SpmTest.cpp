// Runs spm as a user would without a terminal, and tests parts that no run reaches.

#include "common/Environment.h"
#include "common/LibraryNames.h"
#include "spm/measure/RunWriter.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <algorithm>
#include <fmt/format.h>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

class Spm : public testing::Test {
protected:
    /// Runs "spm measure" with these arguments and gives its exit status.
    int measure(Texts arguments) {
        arguments.insert(arguments.begin(), "measure");
        return run(common::programFolder() / ("spm" + programExtension), arguments, {folder / "out", folder / "err"});
    }
    std::string file(const std::string& name) const { return (folder / name).string(); }
    std::string output() const { return readText(folder / "out"); }
    std::string errors() const { return readText(folder / "err"); }
    void useScript(const std::string& text) const {
        writeFile(folder / "script.json", text);
        setVariable("I1PRO3_SIMULATOR", file("script.json"));
    }

    TempFolder folder;
    Settings settings; // for this process; on Windows, spm reads the user's registry
    const EnvironmentVariable script{"I1PRO3_SIMULATOR", ""};
};

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

Texts operator+(Texts one, const Texts& other) {
    one.insert(one.end(), other.begin(), other.end());
    return one;
}

} // namespace

TEST_F(Spm, ShowsTables) {
    ASSERT_EQ(measure({"--patches", "12", "--rows", "2", "--spectra"}), 0) << errors();
    Texts lines = linesOf(output());
    EXPECT_EQ(std::count(lines.begin(), lines.end(), lines[1]), 2) << "a header for each row";
    EXPECT_EQ(lines.size(), 2 * 2U + 24);
    ASSERT_EQ(measure({"--spots", "2", "--names", "a name of 24 characters.,gr\xC3\xBCn and a rather long name"}), 0);
    lines = linesOf(output());
    ASSERT_EQ(lines.size(), 3U) << "one header for all spots";
    EXPECT_TRUE(lines[1].starts_with("a name of 24 characters.     36.81 ")) << lines[1];
    EXPECT_TRUE(lines[2].starts_with("gr\xC3\xBCn and a rather long \u2026 ")) << lines[2];
    EXPECT_TRUE(contains(errors(), "SIMULATED: ") && errors().ends_with("\n2 of 2 patches\n")) << errors();
}

// The last row is shorter; a last row of one patch is measured as a spot.
TEST_F(Spm, MeasuresAShortLastRow) {
    for (const auto& [names, last] : std::vector<std::pair<std::string, std::string>>{
             {"a,b,c,d,e", "slide the instrument from \"d\" to \"e\""}, {"a,b,c,d", "place the instrument on \"d\""}}) {
        ASSERT_EQ(measure({"--names", names, "--patches", "3"}), 0) << errors();
        EXPECT_TRUE(contains(errors(), last)) << errors();
    }
}

// The chart is in random order and has device values, and names that look like other fields. Everything comes from the
// file when the run goes on, and values measured before don't change, even in a gap.
TEST_F(Spm, GoesOnWithTheOutputFile) {
    const std::string chart =
        "CGATS.17\nBEGIN_DATA_FORMAT\nSAMPLE_ID SAMPLE_NAME CMYK_C CMYK_K\nEND_DATA_FORMAT\nBEGIN_DATA\n"
        "A10 a,no,b 0 100\nA2 x 7.50 0\nB1 \"patch # 1\" 1 2\nA1 x 3 4\nC7 last 5 6\nEND_DATA\n";
    writeFile(file("chart.cgats"), chart);
    const Texts complete{"--chart", file("chart.cgats"), "--patches", "2", "--observer", "2", "--xyz"};
    for (const std::string name : {"run.csv", "run.json", "run.cgats"}) {
        useScript(R"({"faults": [{"function": "I1PRO3_TriggerMeasurement", "call": 2, "result": 7, "text": "lamp"}]})");
        EXPECT_EQ(measure(complete + Texts{"--overwrite", "--output", file(name)}), 1);
        EXPECT_TRUE(contains(errors(), "\n2 of 5 patches, in " + file(name) + "\npatches 3 to 5 ")) << errors();
        EXPECT_TRUE(errors().ends_with(" --resume\n")) << errors();
        const std::string before = readText(file(name));
        useScript(R"({"place": "white reference"})"); // measures other values than before
        ASSERT_EQ(measure({"--resume", "--output", file(name), "--patches", "2", "--observer", "2"}), 0) << errors();
        EXPECT_TRUE(errors().ends_with("\n5 of 5 patches, in " + file(name) + "\n")) << errors();
        const std::string after = readText(file(name));
        for (const std::string& line : linesOf(before)) {
            const bool isMeasured = contains(line, "A10") || contains(line, "7.50");
            EXPECT_TRUE(!isMeasured || contains(after, line)) << line << after;
        }
        EXPECT_TRUE(contains(after, "C7") && contains(after, "UV Included")) << after;
        EXPECT_FALSE(contains(after, "lamp")) << after;
        ASSERT_EQ(measure({"--resume", "--output", file(name)}), 0) << errors();
        EXPECT_FALSE(contains(errors(), "Calibration")) << "nothing is missing";
    }
    const std::string data = readText(file("run.cgats"));
    EXPECT_TRUE(contains(data, "\nSAMPLE_ID\tSAMPLE_NAME\tCMYK_C\tCMYK_K\tLAB_L\tLAB_A\tLAB_B\tXYZ_X")) << data;
    EXPECT_TRUE(contains(data, "\nA2\t\"x\"\t7.50\t0\t") && contains(data, "\nA1\t\"x\"\t3\t4\t")) << data;
}

TEST_F(Spm, RefusesToGoOnWithAnotherRun) {
    const std::string run = file("run.json");
    ASSERT_EQ(measure({"--names", "x,a,y,b", "--patches", "2", "--output", run}), 0) << errors();
    writeFile(file("foreign.csv"), "name,L*,a*,b*\none,1,2,3\n");
    const std::vector<std::tuple<Texts, std::string, std::string>> cases{
        {{"--patches", "3"}, "3", "2"},
        {{"--rows", "3"}, "3", "2"},
        {{"--spots", "4"}, "4", "rows"},
        {{"--names", "x,a,c,b"}, "\"c\" as patch 3", "\"y\" as patch 3"},
        {{"--names", "x,a,y"}, "only 3 patches", "\"b\" as patch 4"},
        {{"--chart", file("foreign.csv")}, "\"one\" as patch 1", "\"x\" as patch 1"},
        {{"--illuminant", "A"}, "A", "D65"},
        {{"--observer", "2"}, "2", "10"},
        {{"--spectra"}, "spectra", "no spectra"},
        {{"--xyz"}, "XYZ", "no XYZ"}};
    for (const auto& [options, asked, found] : cases) {
        EXPECT_EQ(measure(Texts{"--resume", "--output", run} + options), 2) << options[0];
        const std::string message = fmt::format(" asks for {}, but {} has {}; ", asked, run, found);
        EXPECT_TRUE(contains(errors(), message) && contains(errors(), options[0])) << message << errors();
    }
    std::string real = readText(run);
    const std::string simulation = "simulated i1Pro 3 with the ColorChecker Classic chart";
    writeFile(file("real.json"), real.replace(real.find(simulation), simulation.size(), ""));
    for (const std::string name : {"ruin.csv", "foreign.csv", "real.json"}) {
        EXPECT_EQ(measure({"--resume", "--output", file(name)}), 2);
        EXPECT_TRUE(contains(errors(), name)) << errors();
    }
}

TEST_F(Spm, CalculatesCielabFromSpectra) {
    const std::string expected = SOURCE_FOLDER "/tests/unit/data/colorchecker24_lab.csv";
    // The expected values are calculated with published weights at 10 nm, as in the simulated instrument.
    useScript(R"({"light": {"noise": 0}})");
    const Texts chart{"--chart", expected, "--reference", expected, "--patches", "24"};
    EXPECT_EQ(measure(chart + Texts{"--spectra", "--tolerance", "max=0.03"}), 0) << output();
}

TEST_F(Spm, ReadsItsOwnOutputAsChartAndReference) {
    const std::string values = (folder / "" / u8"values \u8272.csv").string();
    writeFile(file("chart.csv"), "name\n\"a, \"\"b\"\"\"\n\ngr\xC3\xBCn \xE7\xB7\x91\n");
    ASSERT_EQ(measure({"--spots", "2", "--chart", file("chart.csv"), "--output", values}), 0) << errors();
    EXPECT_EQ(output(), "");
    EXPECT_TRUE(contains(errors(), "on \"gr\xC3\xBCn \xE7\xB7\x91\" and ")) << errors();
    const Texts compared{"--spots", "2", "--chart", values, "--reference", values};
    ASSERT_EQ(measure(compared), 0) << errors();
    EXPECT_TRUE(contains(output(), "\na, \"b\" ") && contains(output(), values + ": 2 of 2 patches")) << output();
    ASSERT_EQ(measure(compared + Texts{"--format", "json", "--tolerance", "max=0.1"}), 0) << errors();
    EXPECT_TRUE(contains(output(), "\"passed\": true") && output().ends_with("]\n}\n")) << output();
    EXPECT_TRUE(contains(errors(), "(at most 0.1: passed)")) << errors();
}

TEST_F(Spm, ComparesAllPatchesWithATolerance) {
    const std::string two = "name,L*,a*,b*\npatch 1,40,13.9,14.7\npatch 2,65.8,13.4,17.7\n";
    writeFile(file("two.csv"), two);
    writeFile(file("four.csv"), two + "patch 3,51.6,-3.8,-20.2\npatch 4,42.1,-12.3,21.8\n");
    const std::vector<std::tuple<std::string, Texts, int, std::string>> cases{
        {"four.csv", {"--tolerance", "mean=0.8,max=2.8"}, 0, "Tolerance                   passed\n"},
        {"four.csv", {"--tolerance", "max=2.7"}, 4, "Tolerance                   FAILED\n"},
        {"two.csv", {}, 0, ": 2 of 4 patches compared\n"},
        {"two.csv", {"--tolerance", "max=99"}, 2, ""}};
    for (const auto& [reference, more, status, text] : cases) {
        EXPECT_EQ(measure(Texts{"--patches", "2", "--rows", "2", "--reference", file(reference)} + more), status);
        EXPECT_TRUE(contains(output(), text)) << output();
    }
    EXPECT_TRUE(contains(errors(), "\"patch 3\", \"patch 4\"") && contains(errors(), "\"patch 1\", \"patch 2\""));
    EXPECT_FALSE(contains(errors(), "Calibration"));
}

TEST_F(Spm, ReportsTheCauseOfEachFailure) {
    struct Case {
        Texts arguments;
        int status;
        std::string message;
        std::string fault{};
    };
    const std::string chart = file("chart.csv");
    const std::string place = (folder / "").parent_path().string();
    writeFile(chart, "name,L*,a*,b*\none,1,2,3\n");
    writeFile(file("reference.csv"), "name,L*,a*,b*\nother,1,2,3\n");
    writeFile(file("d50.csv"), "name,L*,a*,b*,illuminant\npatch 1,1,2,3,D50\n");
    writeFile(file("quotes.csv"), "name\none\n\"5\"\" tile\"\n");
    writeFile(file("earlier.csv"), "");
    fs::create_hard_link(chart, file("link.csv"));
    const auto lampFails = [](const std::string& function) {
        return R"({"result": 9, "text": "lamp", "function": "I1PRO3_)" + function + "\"}";
    };
    const std::string connectionLost = R"({"function": "I1PRO3_GetConnectionStatus", "call": 15, "exception": "x"})";
    const Texts row{"--patches", "2", "--report", file("page.html")};
    const std::vector<Case> cases{
        {{"--module", file("missing.module")}, 1, "missing.module"},
        {{"--module", (common::programFolder() / common::sdkFileName).string()}, 1, "SPM_create"},
        {{"--chart", file("missing.csv")}, 1, "missing.csv"},
        {{"--chart", chart, "--rows", "4"}, 2, "--rows is 4"},
        {{"--output", "/tmp/values"}, 2, "extension"},
        {{"--report", file("missing/page")}, 1, "No such file or directory"},
        {{"--report", place}, 1, place + ": it is not a regular file"},
        {{"--spots", "1", "--chart", chart, "--output", chart}, 2, "overwritten"},
        {{"--chart", chart, "--output", file("link.csv")}, 2, "overwritten"},
        {{"--output", file("earlier.csv")}, 2, "--overwrite"},
        {{"--chart", file("quotes.csv"), "--output", file("run.txt")}, 2, "quotes.csv line 3, \"5\" tile\""},
        {{"--names", "a\tb", "--format", "cgats"}, 2, "name 1, \"a\uFFFDb\""},
        {{"--reference", file("reference.csv")}, 2, "\"other\""},
        {{"--reference", file("d50.csv")}, 2, "D50/10 degree, but the run measures for D65/10 degree"},
        {{"--reference", chart, "--tolerance", "p99=2"}, 2, "p99=2"},
        {row, 1, "the instrument could not be opened: lamp\nErrorNumber: 9\n", lampFails("OpenDevice")},
        {row, 1, "calibrating failed: lamp\nErrorNumber: 9\n", lampFails("Calibrate")},
        {row, 1, "measuring failed: lamp\nErrorNumber: 9\n", lampFails("GetTriStimulus")},
        {{"--spectra"}, 1, "lamp\nErrorNumber: 9\n", lampFails("GetSpectrum")},
        {row, 1, "the connection to the instrument was lost", connectionLost},
        {row, 1, "1 of 2 patches were found"},
    };
    for (const Case& each : cases) {
        fs::remove(file("trace.jsonl"));
        useScript(R"({"trace": "trace.jsonl", "samples": {"more": -1}, "faults": [)" + each.fault + "]}");
        EXPECT_EQ(measure(each.arguments), each.status) << each.message;
        EXPECT_TRUE(contains(errors(), each.message)) << each.message << "\n" << errors();
        EXPECT_EQ(output(), "");
        const Texts calls = linesOf(readFile(file("trace.jsonl")));
        EXPECT_TRUE(calls.empty() || contains(calls.back(), "SetGlobalOption")) << "the object is not destroyed";
        EXPECT_TRUE(calls.empty() || each.status == 1) << "the instrument was opened";
    }
    EXPECT_FALSE(fs::exists(file("page.html"))) << "nothing was measured";
    for (const auto& entry : fs::directory_iterator(folder / "")) {
        EXPECT_NE(entry.path().extension(), ".part") << entry.path();
    }
    useScript(R"({"samples": {"count": 0}})");
    EXPECT_EQ(measure({"--wait", "1"}), 1);
    EXPECT_TRUE(contains(errors(), "nothing was measured within 1 s")) << errors();
}

TEST_F(Spm, RetriesFailedSaves) {
    spm::Plan plan{.output = folder / "later" / "run.csv", .report = folder / "page", .format = spm::formatCsv};
    plan.run.patches = {{.name = "a", .reading = spm::Reading{{50, 1, 2}}}, {.name = "b", .missingReason = "ended"}};
    const spm::Prompter prompter(plan.waitLimit);
    spm::RunWriter writer(plan, prompter);
    testing::internal::CaptureStderr();
    writer.save({0, 1, "Spot"});
    EXPECT_TRUE(contains(testing::internal::GetCapturedStderr(), "saved later"));
    testing::internal::CaptureStdout();
    EXPECT_FALSE(writer.finish());
    EXPECT_TRUE(contains(testing::internal::GetCapturedStdout(), "\na,50.0000,")) << "values in no file are shown";
    EXPECT_TRUE(contains(readFile(plan.report), "1 of 2 patches<br/>patch 2 not measured: ended"));
    fs::create_directory(folder / "later");
    writer.save({0, 1, "Spot"});
    EXPECT_EQ(linesOf(readText(plan.output)).size(), 3U);
    fs::permissions(plan.output, fs::perms::owner_read | fs::perms::owner_write);
    const fs::perms earlier = fs::status(plan.output).permissions();
    EXPECT_TRUE(writer.finish());
    EXPECT_EQ(fs::status(plan.output).permissions(), earlier);
}

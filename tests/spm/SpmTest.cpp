// Runs spm as a user would without a terminal, and tests parts that no run reaches.

#include "common/Environment.h"
#include "common/LibraryNames.h"
#include "spm/Error.h"
#include "spm/measure/RunWriter.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <regex>

namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

const fs::path moduleFile = common::programFolder() / common::moduleFileName;
const fs::path sdkFile = common::programFolder() / common::sdkFileName;

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

} // namespace

TEST_F(Spm, MeasuresTheChartInTwoPasses) {
    const EnvironmentVariable colours("COLORTERM", "truecolor");
    const std::string chart = SOURCE_FOLDER "/simulator/data/colorchecker24.csv";
    ASSERT_EQ(measure({"--chart", chart, "--patches", "12", "--lab", "--spectra"}), 0) << errors();
    const Texts lines = linesOf(output());
    EXPECT_EQ(std::count(lines.begin(), lines.end(), lines.front()), 2);
    EXPECT_EQ(lines.size(), 2U + 24 + 24 * 9);
    EXPECT_TRUE(contains(output(), "\nwhite 9.5 (.05 D)           95.45    -0.49     1.03\n")) << output();
    EXPECT_TRUE(contains(output(), "\nReflectance of \"black 2 (1.5 D)\" in percent, simulated:\n")) << output();
    EXPECT_TRUE(
        errors().starts_with("Module " + moduleFile.string() + ", version 5.9.0.3\nSIMULATED: no instrument is used."));
    EXPECT_TRUE(contains(errors(), "\nEverything is measured twice: first the CIELab values, then the spectra.\n"));
    EXPECT_TRUE(contains(errors(), "\nRow 2 of 2, spectra: press the button and slide the instrument from "
                                   "\"blue\" to \"black 2 (1.5 D)\".\n"))
        << errors();
}

TEST_F(Spm, KeepsTheRowsBeforeAFailureAndContinues) {
    const std::string fault = R"({"function": "I1PRO3_TriggerMeasurement", "call": 3, "result": 7, "text": "lamp"})";
    const std::string ended = "the run ended: measuring failed: lamp";
    const std::map<std::string, std::string> gaps{{"run.csv", "\npatch 5,,,,"},
                                                  {"run.json", "\"patchesMeasured\": 4,"},
                                                  {"run.cgats", "\n# patches 5 to 8 not measured: "},
                                                  {"run.txt", "CGATS.17\n"}};
    for (const auto& [name, gap] : gaps) {
        useScript(R"({"button": {"polls": 0}, "faults": [)" + fault + "]}");
        EXPECT_EQ(measure({"--patches", "2", "--report", file("page.html"), "--output", file(name)}), 1) << name;
        EXPECT_TRUE(errors().ends_with("\nspm: measuring failed: lamp\nErrorNumber: 7\n")) << errors();
        EXPECT_TRUE(contains(errors(), "\n4 of 8 patches measured; patches 5 to 8 not measured: " + ended)) << errors();
        EXPECT_TRUE(contains(readText(file(name)), gap)) << name;
        for (const std::string& written : {readFile(file(name)), readFile(file("page.html"))}) {
            EXPECT_TRUE(contains(written, ended)) << written;
        }
        fs::remove(file("page.html"));
        useScript("{}");
        EXPECT_EQ(measure({"--patches", "2", "--first-row", "4", "--output", file(name)}), 3) << errors();
        EXPECT_TRUE(contains(errors(), "\n6 of 8 patches measured; patches 5 to 6 not measured: ")) << errors();
        EXPECT_EQ(measure({"--patches", "2", "--first-row", "3", "--output", file(name)}), 0) << errors();
        EXPECT_FALSE(contains(readText(file(name)), ended)) << readText(file(name));
    }
    EXPECT_EQ(measure({"--patches", "2", "--first-row", "5"}), 2);
    EXPECT_EQ(measure({"--rows", "2", "--first-row", "2", "--output", file("run.csv")}), 0) << "other rows";
    EXPECT_EQ(
        measure({"--rows", "2", "--first-row", "2", "--names", "a,b,c,d,e,f,g,h,i,j,k,l", "--output", file("run.csv")}),
        2);
    EXPECT_TRUE(contains(errors(), "has the patch \"patch 1\", which this chart does not have")) << errors();
    writeFile(file("run.csv"), std::regex_replace(readText(file("run.csv")), std::regex(",simulated i1[^,]*"), ",no"));
    EXPECT_EQ(measure({"--rows", "2", "--first-row", "2", "--output", file("run.csv")}), 2);
    EXPECT_TRUE(contains(errors(), "run.csv has measured values, unlike this run; choose another output file"))
        << errors();
}

TEST_F(Spm, CalculatesCielabFromSpectra) {
    const std::string expected = SOURCE_FOLDER "/tests/unit/data/colorchecker24_lab.csv";
    const auto measureFor = [&](Texts more) {
        more.insert(more.end(), {"--names", "dark skin,light skin,blue sky,foliage", "--patches", "2"});
        more.insert(more.end(), {"--overwrite", "--reference", expected});
        return measure(more);
    };
    // The expected values are calculated with published weights at 10 nm, as in the simulated instrument.
    useScript(R"({"light": {"noise": 0}})");
    const Texts chart{"--chart", expected, "--reference", expected, "--patches", "24", "--illuminant", "D65", "--xyz"};
    ASSERT_EQ(measure(chart), 0) << errors();
    EXPECT_TRUE(output().starts_with("CIELab calculated from spectra\n"
                                     "D65/10 degree, simulated       L*       a*       b*      X      Y      Z\n"));
    EXPECT_TRUE(contains(output(), "\nmaximum                       0.02\n")) << output();
    EXPECT_FALSE(contains(output(), "Reflectance")) << output();
    EXPECT_EQ(
        measure({"--observer", "10", "--patches", "2", "--names", "light skin,dark skin", "--reference", expected}), 0);
    EXPECT_TRUE(contains(errors(), "Row 1 of 1 in reverse matches better (0.0)")) << errors();
    for (const char* const name : {"run.csv", "run.json", "run.cgats"}) {
        ASSERT_EQ(measureFor({"--illuminant", "A", "--lab", "--output", file(name)}), 0) << errors();
        EXPECT_TRUE(contains(readText(file(name)), "UV Included")) << readText(file(name));
        EXPECT_EQ(measureFor({"--observer", "10", "--illuminant", "A", "--first-row", "2", "--output", file(name)}), 0)
            << errors();
        for (const Texts& otherConditions :
             {Texts{"--observer", "2", "--illuminant", "A"}, {"--illuminant", "D65"}, {"--lab"}}) {
            Texts options{"--first-row", "2", "--output", file(name)};
            options.insert(options.end(), otherConditions.begin(), otherConditions.end());
            EXPECT_EQ(measureFor(options), 2);
            EXPECT_TRUE(contains(errors(), name + std::string(" has CIELab values for other conditions; ")))
                << errors();
        }
    }
    ASSERT_EQ(measure({"--rows", "1", "--spectra", "--output", file("spectra.csv")}), 0) << errors();
    ASSERT_EQ(measure({"--observer", "2", "--first-row", "2", "--output", file("spectra.csv")}), 0) << errors();
    EXPECT_FALSE(contains(readText(file("spectra.csv")), "\npatch 1,,")) << "earlier rows get CIELab values, too";
}

TEST_F(Spm, ReadsItsOwnOutputAsChartAndReference) {
    const std::string values = (folder / "" / u8"values \u8272.csv").string();
    writeFile(file("chart.csv"), "name\n\"a, \"\"b\"\"\"\n\ngr\xC3\xBCn \xE7\xB7\x91\n");
    ASSERT_EQ(measure({"--spots", "2", "--chart", file("chart.csv"), "--output", values}), 0) << errors();
    EXPECT_EQ(output(), "");
    EXPECT_TRUE(contains(errors(), "Spot 2 of 2, CIELab: place the instrument on \"gr\xC3\xBCn \xE7\xB7\x91\" and "));
    ASSERT_EQ(measure({"--spots", "2", "--chart", values, "--reference", values}), 0) << errors();
    EXPECT_TRUE(contains(output(), " b*\na, \"b\" ")) << output();
    EXPECT_TRUE(contains(output(), "\n\nCompared with ")) << output();
    EXPECT_TRUE(contains(output(), "\nmaximum                       0.00\n")) << output();
    const Texts within{"--spots", "2",           "--chart", values,        "--format",
                       "json",    "--reference", values,    "--tolerance", "max=0.1"};
    ASSERT_EQ(measure(within), 0) << errors();
    EXPECT_TRUE(contains(output(), "\"patchesInRow\": 0,")) << output();
    EXPECT_TRUE(contains(output(), "\"passed\": true,") && output().ends_with("]\n}\n")) << output();
    EXPECT_TRUE(contains(errors(), "\nmaximum                       0.00 (at most 0.1: passed)\n")) << errors();
    EXPECT_FALSE(contains(errors(), "measured twice")) << errors();
}

TEST_F(Spm, FailsWhenOutOfTolerance) {
    writeFile(file("expected.csv"), "name,L*,a*,b*\npatch 1,40,13.9,14.7\npatch 3,51.6,-3.8,-20.2\n");
    const std::string txt = file("run.txt");
    const auto compare = [&](Texts more) {
        more.insert(more.end(), {"--patches", "2", "--reference", file("expected.csv"), "--overwrite"});
        return measure(more);
    };
    EXPECT_EQ(compare({"--difference", "76", "--tolerance", "mean=1.7,max=3.3"}), 0) << output();
    EXPECT_TRUE(contains(output(), "\nTolerance                   passed\n")) << output();
    EXPECT_EQ(compare({"--difference", "76", "--tolerance", "max=3.1", "--format", "table", "--output", txt}), 4);
    for (const std::string& text : {errors(), readText(txt)}) {
        EXPECT_TRUE(contains(text, "\nTolerance                   FAILED\n")) << text;
    }
    EXPECT_EQ(compare({"--tolerance", "max=0", "--first-row", "2"}), 3) << "incomplete takes precedence";
}

TEST_F(Spm, ReportsTheCauseOfEachFailure) {
    struct Case {
        Texts arguments;
        int status;
        std::string message;
        std::string fault{};
    };
    const std::string missing = file("missing.module");
    const std::string chart = file("chart.csv");
    const std::string place = (folder / "").parent_path().string();
    writeFile(file("no module"), "text");
    writeFile(chart, "name,L*,a*,b*\none,1,2,3\n");
    writeFile(file("earlier.csv"), "");
    fs::create_hard_link(chart, file("link.csv"));
    const auto lampFails = [](const std::string& function) {
        return R"({"result": 9, "text": "lamp", "function": "I1PRO3_)" + function + "\"}";
    };
    const std::string connectionLost = R"({"function": "I1PRO3_GetConnectionStatus", "call": 15, "exception": "x"})";
    const Texts row{"--lab", "--spectra", "--patches", "2", "--report", file("page.html")};
    const std::vector<Case> cases{
        {{"--module", missing}, 1, "can't load the module " + missing + ": "},
        {{"--module", file("no module")}, 1, ": it is not a library for this system; replace it with the right file\n"},
        {{"--module", sdkFile.string()}, 1, "is not a spectrophotometer module: it has no SPM_create"},
        {{"--module", ""}, 2, "--module: the file name is empty\n"},
        {{"--chart", missing}, 1, "can't read the chart file " + missing + ": "},
        {{"--chart", chart}, 2, chart + " is 1, which is not a multiple of 6; "},
        {{"--chart", chart, "--rows", "4"}, 2, chart + " is 1, but should be 24; "},
        {{"--patches", "1"}, 2, "--patches"},
        {{"--names", "a,b", "--spots", "1"}, 2, "--names is 2, but should be 1; "},
        {{"--spots", "2", "--rows", "2"}, 2, "--spots"},
        {{"--output", "/tmp/values"}, 2, "can't determine the format of /tmp/values from its extension; "},
        {{"--format", "xml"}, 2, "--format"},
        {{"--report", file("missing/page")}, 1, "page: No such file or directory; choose another file"},
        {{"--report", place}, 1, "can't write " + place + ": it is not a regular file; choose another file"},
        {{"--report", missing, "--format", "csv", "--output", missing}, 2, missing + " would be overwritten; "},
        {{"--spots", "1", "--chart", chart, "--output", chart}, 2, chart + " would be overwritten; use a different"},
        {{"--chart", chart, "--output", file("link.csv")}, 2, "link.csv would be overwritten; use a different name "},
        {{"--output", file("earlier.csv")}, 2, "earlier.csv exists; choose another file, or replace it with --over"},
        {{"--reference", missing}, 1, "can't read the reference file " + missing + ": "},
        {{"--reference", chart}, 2, "the first one is \"patch 1\", the reference has \"one\"; use the same names"},
        {{"--reference", missing, "--spectra"}, 2, "which are not measured; add --lab"},
        {{"--xyz", "--spectra"}, 2, "which are not measured; add --lab"},
        {{"--illuminant", "F11"}, 2, "--illuminant"},
        {{"--observer", "3"}, 2, "--observer"},
        {{"--tolerance", "mean=2"}, 2, "--tolerance requires --reference"},
        {{"--difference", "94"}, 2, "--difference requires --reference"},
        {{"--reference", chart, "--difference", "00"}, 2, "--difference: 00 not in {2000,76,94}"},
        {{"--reference", chart, "--tolerance", "p99=2"},
         2,
         "\"p99=2\" is not a limit; use each of mean, median, p90, "},
        {row, 1, "the instrument could not be opened: lamp\nErrorNumber: 9\n", lampFails("OpenDevice")},
        {row, 1, "no instrument was found; connect one by USB and try again\n", R"({"function": "I1PRO3_GetDevices"})"},
        {row, 1, "calibrating failed: lamp\nErrorNumber: 9\n", lampFails("Calibrate")},
        {row, 1, "measuring failed: lamp\nErrorNumber: 9\n", lampFails("GetTriStimulus")},
        {{"--spectra"}, 1, "measuring failed: lamp\nErrorNumber: 9\n", lampFails("GetSpectrum")},
        {row, 1, "measuring failed: the connection to the instrument was lost\n", connectionLost},
        {row, 1, "Row 1 of 4: 1 of 2 patches were found; slide more slowly, and start"},
    };
    for (const Case& each : cases) {
        fs::remove(file("trace.jsonl"));
        useScript(R"({"trace": "trace.jsonl", "samples": {"more": -1}, "faults": [)" + each.fault + "]}");
        EXPECT_EQ(measure(each.arguments), each.status) << each.message;
        EXPECT_TRUE(contains(errors(), each.message)) << errors();
        EXPECT_EQ(output(), "");
        const Texts calls = linesOf(readFile(file("trace.jsonl")));
        EXPECT_TRUE(calls.empty() || contains(calls.back(), "SetGlobalOption")) << "the object is not destroyed";
    }
    EXPECT_FALSE(fs::exists(file("page.html"))) << "nothing was measured";
    for (const auto& entry : fs::directory_iterator(folder / "")) {
        EXPECT_NE(entry.path().extension(), ".part") << entry.path();
    }
    EXPECT_EQ(measure({"--help"}), 0);
    EXPECT_TRUE(contains(output(), "Exit status:")) << output();
}

TEST_F(Spm, RejectsNaN) {
    useScript(R"({"trace": "trace.jsonl"})");
    ASSERT_EQ(measure({"--spots", "1"}), 0) << errors();
    const std::regex firstValue(R"("values":\[[^,]*)");
    writeFile(file("nan.jsonl"), std::regex_replace(readFile(file("trace.jsonl")), firstValue, R"("values":["nan")"));
    useScript(R"({"replay": "nan.jsonl"})");
    EXPECT_EQ(measure({"--spots", "1"}), 1);
    EXPECT_TRUE(contains(errors(), "the patch \"patch 1\" has an invalid value for L*: nan; ")) << errors();
    EXPECT_EQ(output(), "");
}

TEST_F(Spm, RetriesFailedSaves) {
    const spm::Strip spot{0, 1, "Spot"};
    spm::MeasureOptions options;
    options.output = folder / "later" / "run";
    options.report = folder / "page";
    options.format = spm::Format::table;
    const spm::Prompter prompter;
    spm::Run run;
    run.readings = {{"a", SPM_LAB{50, 1, 2}, {}}, {"b", std::nullopt, {}}};
    spm::RunWriter writer(options, prompter, run);
    testing::internal::CaptureStderr();
    writer.save(spm::Quantity::lab, spot);
    writer.saveIfDue();
    EXPECT_TRUE(testing::internal::GetCapturedStderr().ends_with(
        "folder\nThe measured values are kept and will be saved later.\n"));
    testing::internal::CaptureStdout();
    EXPECT_THROW(writer.finish("ended"), spm::Error);
    EXPECT_TRUE(contains(testing::internal::GetCapturedStdout(), "\na      ")) << "values in no file are shown";
    EXPECT_TRUE(contains(readFile(options.report), "1 of 2 patches<br/>patch 2 not measured: ended"));
    fs::create_directory(folder / "later");
    writer.finish("");
    EXPECT_EQ(linesOf(readText(options.output)).size(), 2U);
    fs::permissions(options.output, fs::perms::owner_read | fs::perms::owner_write);
    const fs::perms earlier = fs::status(options.output).permissions();
    writer.finish("");
    EXPECT_EQ(fs::status(options.output).permissions(), earlier);
}

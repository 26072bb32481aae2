#include "host/HostError.h"
#include "host/Instrument.h"
#include "host/Swatch.h"
#include "host/Table.h"
#include "simulator/Data.h"
#include "tests/support/SimulatorOf.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using Texts = std::vector<std::string>;

const std::filesystem::path moduleFile = host::programFolder() / host::moduleFileName;
const std::filesystem::path sdkFile = host::programFolder() / host::sdkFileName;

class Spm : public testing::Test {
protected:
    /// Runs spm with these arguments and gives its exit status.
    int run(const Texts& arguments) {
        return ::run(host::programFolder() / ("spm" + programExtension), arguments, {folder / "out", folder / "err"});
    }
    std::string output() const { return readText(folder / "out"); }
    std::string errors() const { return readText(folder / "err"); }

    TempFolder folder;
    Settings settings; // of this process; on Windows, spm itself reads the user's
};

} // namespace

TEST_F(Spm, MeasuresTheChartInTwoPasses) {
    const EnvironmentVariable colours("COLORTERM", "truecolor");
    const std::filesystem::path chart = folder / "chart.csv";
    writeFile(chart, std::string(simulator::colorCheckerCsv));
    ASSERT_EQ(run({"measure", "--chart", chart.string(), "--lab", "--spectra"}), 0) << errors();
    const Texts lines = linesOf(output());
    const auto has = [&](const std::string& line) { return std::count(lines.begin(), lines.end(), line) == 1; };
    EXPECT_TRUE(has("white 9.5 (.05 D)           95.45    -0.49     1.03")) << output();
    EXPECT_TRUE(has("Reflectance of \"black 2 (1.5 D)\" in percent, simulated:")) << "the same chart in both passes";
    EXPECT_EQ(std::count(lines.begin(), lines.end(), lines.front()), 4);
    EXPECT_TRUE(lines.front().ends_with(" L*       a*       b*   (D65, 10 degree, simulated)"));
    EXPECT_EQ(lines.size(), 4U + 24 + 24 * 7);
    EXPECT_EQ(output().find('\x1b'), std::string::npos) << "no colours where there is no terminal";
    const std::string told = errors();
    EXPECT_TRUE(told.starts_with("Module " + moduleFile.string() + ", version 3\nSIMULATED: no instrument is used. "));
    EXPECT_NE(told.find("\nAll is measured twice: first for the CIELab values, then for the spectra.\n"),
              std::string::npos);
    EXPECT_NE(
        told.find("\nRow 4 of 4, spectra: press the button and slide the instrument from \"white 9.5 (.05 D)\" to "
                  "\"black 2 (1.5 D)\".\n"),
        std::string::npos);
}

TEST_F(Spm, WritesWhatWasReadBeforeTheNextRow) {
    const std::filesystem::path script = folder / "script.json";
    const EnvironmentVariable simulator("I1PRO3_SIMULATOR", script.string());
    struct Case {
        std::string name;
        Texts options;
        std::string begin;
    };
    const std::vector<Case> cases{
        {"run.csv", {}, "name,"},
        {"run.json", {}, "{"},
        {"run.cgats", {}, "CGATS.17\n"},
        {"run", {"--format", "table"}, "                               L*"},
    };
    writeFile(script,
              R"({"faults": [{"function": "I1PRO3_TriggerMeasurement", "call": 3, "result": 7, "text": "lamp"}]})");
    for (const Case& each : cases) {
        Texts arguments{"measure", "--patches", "2", "--output", (folder / each.name).string()};
        arguments.insert(arguments.end(), each.options.begin(), each.options.end());
        EXPECT_EQ(run(arguments), 1) << each.name;
        EXPECT_TRUE(errors().ends_with("\nspm: measuring failed: lamp\nErrorNumber: 7\n")) << errors();
        EXPECT_EQ(output(), "");
        const std::string written = readText(folder / each.name);
        EXPECT_TRUE(written.starts_with(each.begin)) << written;
        EXPECT_NE(written.find("patch 2"), std::string::npos) << each.name;
        EXPECT_EQ(written.find("patch 5"), std::string::npos) << each.name;
        EXPECT_FALSE(std::filesystem::exists(folder / (each.name + ".part")));
    }
}

TEST_F(Spm, MeasuresSpotsComparesAndReports) {
    const std::string reference = (folder / "reference.csv").string();
    const std::string report = (folder / "report.html").string();
    writeFile(reference, "name,L,a,b\none,36.8,13.9,14.7\ntwo,0,0,0\n");
    ASSERT_EQ(run({"measure", "--spots", "2", "--names", "one,two", "--format", "csv", "--reference", reference,
                   "--report", report}),
              0)
        << errors();
    EXPECT_EQ(linesOf(output()).size(), 3U);
    EXPECT_NE(errors().find("Spot 2 of 2, CIELab: place the instrument on \"two\" and press the button.\n"),
              std::string::npos);
    EXPECT_NE(errors().find("D65, 10 degree"), std::string::npos) << "the comparison stands apart from the data";
    EXPECT_NE(readFile(report).find("two"), std::string::npos);
}

TEST_F(Spm, KeepsNamesOfAllLanguages) {
    const std::filesystem::path values = folder / "" / u8"values \u8272.csv";
    ASSERT_EQ(run({"measure", "--spots", "1", "--names", "gr\xC3\xBCn \xE7\xB7\x91", "--output", values.string()}), 0)
        << errors();
    EXPECT_NE(readText(values).find("\ngr\xC3\xBCn \xE7\xB7\x91,"), std::string::npos) << readText(values);
}

TEST_F(Spm, MeasuresAgainWhatWasRecorded) {
    const std::filesystem::path module = folder / host::moduleFileName;
    const std::filesystem::path script = folder / "script.json";
    std::filesystem::copy_file(moduleFile, module);
    std::filesystem::copy_file(host::programFolder() / "recorder" / host::sdkFileName, folder / host::sdkFileName);
    writeFile(script, R"({"replay": "trace.jsonl"})");
    const EnvironmentVariable library("I1PRO3_RECORDER_SDK", sdkFile.string());
    const EnvironmentVariable trace("I1PRO3_RECORDER_TRACE", (folder / "trace.jsonl").string());
    ASSERT_EQ(run({"measure", "--module", module.string()}), 0) << errors();
    const Texts recorded = linesOf(output());
    const EnvironmentVariable simulator("I1PRO3_SIMULATOR", script.string());
    ASSERT_EQ(run({"measure"}), 0) << errors();
    const Texts replayed = linesOf(output());
    ASSERT_GT(recorded.size(), 24U);
    EXPECT_EQ(replayed, recorded);
    EXPECT_NE(errors().find(" a simulated i1Pro 3 that replays " + (folder / "trace.jsonl").string() + ".\n"),
              std::string::npos);
    EXPECT_NE(run({"measure", "--patches", "5"}), 0);
    EXPECT_NE(errors().find(" departs from the trace "), std::string::npos) << errors();
}

TEST_F(Spm, SaysWhatFailedAndWithWhat) {
    struct Case {
        Texts arguments;
        int status;
        std::string message;
    };
    const std::string missing = (folder / "missing.module").string();
    const std::string noModule = (folder / "no module").string();
    const std::string chart = (folder / "chart.csv").string();
    const std::string noFolder = (folder / "missing" / "page").string();
    const std::string aFolder = (folder / "").parent_path().string();
    writeFile(noModule, "text");
    writeFile(chart, "name,L*,a*,b*\none,1,2,3\n");
    const std::vector<Case> cases{
        {{"--module", missing}, 1, "can't load the module " + missing + ": "},
        {{"--module", noModule}, 1, "; name another one with --module, or see what \"spm doctor\" finds\n"},
        {{"--module", sdkFile.string()}, 1, "is not a spectrophotometer module: it has no SPM_create"},
        {{"--module", ""}, 2, "--module: names no file\n"},
        {{"--chart", "/no/such/chart.csv"}, 1, "can't read the chart file /no/such/chart.csv; name a CSV file\n"},
        {{"--chart", chart}, 2, " names 1 patches, but 24 are to be measured; "},
        {{"--patches", "1"}, 2, "--patches"},
        {{"--names", "a,b"}, 2, "--names has 2 patches, but 24 are to be measured; "},
        {{"--spots", "2", "--rows", "2"}, 2, "--spots"},
        {{"--output", "/tmp/values"}, 2, "the name /tmp/values does not tell the format; "},
        {{"--format", "xml"}, 2, "--format"},
        {{"--output", noFolder + ".csv"}, 1, "can't write "},
        {{"--report", noFolder}, 1, "page.part: No such file or directory; choose another file"},
        {{"--report", aFolder}, 1, "can't write " + aFolder + ": it is no ordinary file; choose another file"},
        {{"--report", missing, "--format", "csv", "--output", missing}, 2, missing + " would be written over; "},
        {{"--spots", "1", "--chart", chart, "--output", chart}, 2, chart + " would be written over; give each file "},
        {{"--reference", missing}, 1, "can't read the reference file " + missing + "; name a CSV file\n"},
        {{"--reference", chart}, 2, "\"patch 1\" is to be measured, the reference has \"one\"; name the patches as "},
        {{"--reference", missing, "--spectra"}, 2, "which are not measured; add --lab"},
    };
    for (const Case& each : cases) {
        Texts arguments{"measure"};
        arguments.insert(arguments.end(), each.arguments.begin(), each.arguments.end());
        EXPECT_EQ(run(arguments), each.status) << each.message;
        EXPECT_NE(errors().find(each.message), std::string::npos) << errors();
        EXPECT_EQ(output(), "");
    }
    EXPECT_EQ(run({}), 2);
}

TEST_F(Spm, WritesWhatWasReadBeforeAFailure) {
    struct Case {
        std::string script;
        std::string message;
    };
    const std::vector<Case> cases{
        {R"({"samples": {"more": -1}})", "\nspm: Row 1 of 4: 1 of 2 patches were found; slide more slowly, "},
        {R"({"faults": [{"function": "I1PRO3_TriggerMeasurement", "call": 2, "result": 7, "text": "lamp"}]})",
         "\nspm: measuring failed: lamp\n"},
    };
    const EnvironmentVariable simulator("I1PRO3_SIMULATOR", (folder / "script.json").string());
    for (const Case& each : cases) {
        const bool isRead = &each != cases.data();
        const std::filesystem::path report = folder / "page.html";
        writeFile(folder / "script.json", each.script);
        EXPECT_EQ(run({"measure", "--patches", "2", "--format", "csv", "--report", report.string()}), 1);
        EXPECT_NE(errors().find(each.message), std::string::npos) << errors();
        EXPECT_EQ(linesOf(output()).size(), isRead ? 3U : 0U) << output();
        EXPECT_EQ(std::filesystem::exists(report), isRead);
    }
}

TEST_F(Spm, TakesItsOwnValuesAsChartAndReference) {
    const std::string values = (folder / "values.csv").string();
    writeFile(folder / "chart.csv", "name\n\"a, \"\"b\"\"\"\n\nc\n");
    ASSERT_EQ(run({"measure", "--spots", "2", "--chart", (folder / "chart.csv").string(), "--output", values}), 0);
    ASSERT_EQ(run({"measure", "--spots", "2", "--chart", values, "--reference", values}), 0) << errors();
    EXPECT_NE(output().find("\na, \"b\" "), std::string::npos) << output();
    EXPECT_NE(output().find("(D65, 10 degree, simulated)\na, \"b\" "), std::string::npos) << output();
    EXPECT_NE(output().find("\nmaximum                       0.00\n"), std::string::npos) << output();
}

TEST_F(Spm, PassesOnTheModulesErrorText) {
    struct Case {
        simulator::Answer answer;
        std::string message;
    };
    const char* const closedAndDestroyed = "CloseDevice SetGlobalOption SetGlobalOption ";
    const std::string lamp = "lamp\nErrorNumber: 9";
    const std::vector<Case> cases{
        {{.function = "I1PRO3_OpenDevice", .result = 9, .errorText = "lamp"},
         "the instrument could not be opened: " + lamp},
        {{.function = "I1PRO3_GetDevices"}, "no instrument was found; connect one by USB and try again"},
        {{.function = "I1PRO3_Calibrate", .result = 9, .errorText = "lamp"}, "calibrating failed: " + lamp},
        {{.function = "I1PRO3_GetTriStimulus", .result = 9, .errorText = "lamp"}, "measuring failed: " + lamp},
        {{.function = "I1PRO3_GetSpectrum", .result = 9, .errorText = "lamp"}, "measuring failed: " + lamp},
        {{.function = "I1PRO3_GetConnectionStatus", .position = 9, .throws = true},
         "measuring failed: the instrument is not open"},
    };
    for (const Case& each : cases) {
        const host::Module module(moduleFile);
        simulatorOf(module).answer(each.answer);
        const auto wait = [] {};
        try {
            host::Instrument instrument(module);
            instrument.calibrate(wait);
            instrument.read(2, wait);
            instrument.readSpectra(1, wait);
            ADD_FAILURE() << each.message << " was expected";
        } catch (const host::HostError& error) {
            EXPECT_EQ(error.what(), each.message);
        }
        std::string calls;
        for (const simulator::Call& call : simulatorOf(module).calls()) {
            calls += call.function.substr(7) + " ";
        }
        const bool wasFound = each.answer.function != "I1PRO3_GetDevices";
        EXPECT_TRUE(calls.ends_with(wasFound ? closedAndDestroyed : "GetDevices SetGlobalOption ")) << calls;
    }
}

TEST(Table, LeavesOutWhatWasNotMeasured) {
    const std::vector<host::Reading> readings{{"skipped", {}, {{380, 5}}}, {"read", SPM_LAB{50, 0, 0}, {}}};
    const std::string lab = host::labTable(readings, false, host::ColourDepth::none);
    EXPECT_EQ(linesOf(lab).size(), 2U) << lab;
    EXPECT_EQ(lab.find("skipped"), std::string::npos) << "nobody measured 0 for it";
    EXPECT_EQ(host::spectraTable(readings, false, host::ColourDepth::none),
              "Reflectance of \"skipped\" in percent:\n  380 nm   5.00\n");
}

TEST(Swatch, ShowsTheColourAsFarAsTheTerminalCan) {
    using Rgb = std::array<std::uint8_t, 3>;
    EXPECT_EQ(host::toSrgb({100, 0, 0}), (Rgb{255, 255, 255}));
    EXPECT_EQ(host::toSrgb({0, 0, 0}), (Rgb{0, 0, 0}));
    EXPECT_EQ(host::toSrgb({53.24F, 80.09F, 67.20F}), (Rgb{255, 0, 0}));
    EXPECT_EQ(host::swatch({53.24F, 80.09F, 67.20F}, host::ColourDepth::trueColour),
              "\x1b[48;2;255;0;0m      \x1b[0m ");
    EXPECT_EQ(host::swatch({53.24F, 80.09F, 67.20F}, host::ColourDepth::palette256), "\x1b[48;5;196m      \x1b[0m ");
    EXPECT_EQ(host::swatch({53.24F, 80.09F, 67.20F}, host::ColourDepth::none), "");

    const EnvironmentVariable colours("COLORTERM", "");
    const EnvironmentVariable terminal("TERM", "xterm-256color");
    EXPECT_EQ(host::colourDepth(true), host::ColourDepth::palette256);
    EXPECT_EQ(host::colourDepth(false), host::ColourDepth::none);
    const EnvironmentVariable more("COLORTERM", "truecolor");
    EXPECT_EQ(host::colourDepth(true), host::ColourDepth::trueColour);
    const EnvironmentVariable none("NO_COLOR", "1");
    EXPECT_EQ(host::colourDepth(true), host::ColourDepth::none);
}

#include "host/HostError.h"
#include "host/Instrument.h"
#include "host/Swatch.h"
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

TEST_F(Spm, MeasuresTheChartAndASpectrum) {
    const EnvironmentVariable colours("COLORTERM", "truecolor");
    const std::filesystem::path chart = folder / "chart.csv";
    writeFile(chart, std::string(simulator::colorCheckerCsv));
    ASSERT_EQ(run({"measure", "--chart", chart.string()}), 0) << errors();
    const std::string text = output();
    EXPECT_NE(text.find("SIMULATED"), std::string::npos);
    EXPECT_NE(text.find(moduleFile.string()), std::string::npos);
    for (const simulator::Patch& patch : simulator::parseChart(simulator::colorCheckerCsv)) {
        EXPECT_NE(text.find("\n" + patch.name + " "), std::string::npos) << patch.name;
    }
    EXPECT_NE(text.find("white 9.5 (.05 D)           95.45    -0.49     1.03\n"), std::string::npos) << text;
    EXPECT_NE(text.find("380 nm   4.80"), std::string::npos) << text;
    EXPECT_EQ(text.find('\x1b'), std::string::npos) << "no colours where there is no terminal";
    EXPECT_EQ(errors(), "");
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
    EXPECT_TRUE(std::equal(recorded.begin() + 2, recorded.end(), replayed.begin() + 2, replayed.end()));
    EXPECT_TRUE(replayed[1].ends_with(" a simulated i1Pro 3 that replays " + (folder / "trace.jsonl").string() + "."));
    EXPECT_NE(run({"measure", "--patches", "5"}), 0);
    EXPECT_NE(errors().find(" departs from the trace "), std::string::npos) << errors();
}

TEST_F(Spm, SaysWhatFailedAndWithWhat) {
    struct Case {
        Texts arguments;
        std::string message;
    };
    const std::string missing = (folder / "missing.module").string();
    const std::string noModule = (folder / "no module").string();
    const std::string chart = (folder / "chart.csv").string();
    writeFile(noModule, "text");
    writeFile(chart, "name\none\n");
    const std::vector<Case> cases{
        {{"measure", "--module", missing}, "can't load the module " + missing + ": "},
        {{"measure", "--module", noModule}, "; name it with --module, and have the SDK library beside it\n"},
        {{"measure", "--module", sdkFile.string()}, "is not a spectrophotometer module: it has no SPM_create"},
        {{"measure", "--chart", "/no/such/chart.csv"}, "can't read the chart file /no/such/chart.csv"},
        {{"measure", "--chart", chart}, "names 1 patches, but 4 rows of 6"},
        {{"measure", "--patches", "1"}, "--patches"},
        {{}, "subcommand"},
    };
    for (const Case& each : cases) {
        EXPECT_NE(run(each.arguments), 0) << each.message;
        EXPECT_NE(errors().find(each.message), std::string::npos) << errors();
        EXPECT_EQ(output(), "");
    }
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
        {{.function = "I1PRO3_GetDevices"},
         "the instrument could not be opened: none was found; connect one by USB and try again"},
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
            instrument.readSpectrum(wait);
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

#include "host/HostError.h"
#include "host/Instrument.h"
#include "host/Swatch.h"
#include "tests/support/SimulatorOf.h"
#include "tests/support/Support.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

namespace {

class Spm : public testing::Test {
protected:
    /// Runs spm with these arguments and gives its exit status.
    int run(const std::string& arguments) {
        const std::string command = std::string("'") + SPM_PROGRAM + "' " + arguments + " >'" +
                                    (folder / "out").string() + "' 2>'" + (folder / "err").string() + "'";
        const int status = std::system(command.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    std::string output() const { return readFile(folder / "out"); }
    std::string errors() const { return readFile(folder / "err"); }

    TempFolder folder;
    EnvironmentVariable settings{"SPM_REGISTRY", (folder / "settings.reg").string()};
};

} // namespace

TEST_F(Spm, MeasuresTheChartAndASpectrum) {
    ASSERT_EQ(run("measure --chart '" CHART_FILE "'"), 0) << errors();
    const std::string text = output();
    EXPECT_NE(text.find("SIMULATED"), std::string::npos);
    EXPECT_NE(text.find(MODULE_FILE), std::string::npos);
    const std::vector<std::string> names = linesOf(readFile(CHART_FILE));
    for (std::size_t i = 1; i < names.size(); ++i) {
        EXPECT_NE(text.find("\n" + names[i].substr(0, names[i].find(',')) + " "), std::string::npos) << names[i];
    }
    EXPECT_NE(text.find("white 9.5 (.05 D)           95.45    -0.49     1.03\n"), std::string::npos) << text;
    EXPECT_NE(text.find("380 nm   4.80"), std::string::npos) << text;
    EXPECT_EQ(text.find('\x1b'), std::string::npos) << "no colours where there is no terminal";
    EXPECT_EQ(errors(), "");
}

TEST_F(Spm, SaysWhatFailedAndWithWhat) {
    struct Case {
        std::string arguments;
        std::string message;
    };
    writeFile(folder / "no module.so", "text");
    writeFile(folder / "chart.csv", "name\none\n");
    const std::vector<Case> cases{
        {"measure --module '" + (folder / "missing.so").string() + "'",
         "can't load the module " + (folder / "missing.so").string() + ": "},
        {"measure --module '" + (folder / "no module.so").string() + "'",
         "; name it with --module, and have the SDK library beside it\n"},
        {"measure --module '" SDK_FILE "'", "is not a spectrophotometer module: it has no SPM_create"},
        {"measure --chart /no/such/chart.csv", "can't read the chart file /no/such/chart.csv"},
        {"measure --chart '" + (folder / "chart.csv").string() + "'", "names 1 patches, but 4 rows of 6"},
        {"measure --patches 1", "--patches"},
        {"", "subcommand"},
    };
    for (const Case& each : cases) {
        EXPECT_NE(run(each.arguments), 0) << each.arguments;
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
        const host::Module module(MODULE_FILE);
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

#include "simulator/Script.h"

#include "tests/support/Support.h"
#include "tests/unit/SdkHost.h"

#include <gtest/gtest.h>

TEST(Script, ReportsErrors) {
    const TempFolder folder;
    const std::string file = (folder / "script.json").string();
    const std::string wrong = (folder / "wrong.jsonl").string();
    writeFile(wrong, "[]");
    std::filesystem::copy_file(SOURCE_FOLDER "/examples/simulator/recording.jsonl", folder / "recording.jsonl");
    const std::vector<std::pair<std::string, std::string>> cases{
        {"{\n\"light\": {\"noise\": 0.1,}}", ": parse error at line 2, "},
        {R"({"lamp": 1})", ": unknown key \"lamp\"; expected one of instruments, chart, "},
        {R"({"instruments": ["SIM1", "SIM1"]})", ": /instruments/1: duplicate serial number"},
        {R"({"chart": "."})", ": /chart: " + (folder / ".").string() + ": "},
        {R"({"chart": "wrong.jsonl"})", ": /chart: the chart " + wrong + ", line 1: 1 fields; expected 37"},
        {R"({"light": {"noise": 0.11}})", ": /light/noise: must be a number from 0 to 0.1"},
        {R"({"samples": {"count": 1, "more": 1}})", ": /samples: \"count\" and \"more\" exclude each other"},
        {R"({"latency": {"Calibrate": 1}})",
         ": /latency/Calibrate: unknown function \"Calibrate\"; expected one of I1"},
        {R"({"faults": [{"unplug": true, "result": 8}]})", ": /faults/0: only \"function\", \"key\" and \"call\" go "},
        {R"({"faults": [{"result": 1}, {}]})", ": /faults/1: an empty fault would apply to every call"},
        {R"({"faults": [{"text": "lamp"}]})", ": /faults/0: \"text\" and \"number\" need a \"result\" other than 0"},
        {R"({"replay": "wrong.jsonl"})", ": /replay: " + wrong + ", line 1: not a trace; "},
        {R"({"replay": "recording.jsonl", "faults": []})", ": /faults: only "},
    };
    for (const auto& [text, message] : cases) {
        simulator::Script script;
        const std::string error = errorOf([&, &json = text] { applyScript(file, json, script); });
        EXPECT_TRUE(error.starts_with(file + message)) << text << error;
        EXPECT_EQ(script.instruments, std::vector<std::string>{"SIM1"}) << "an invalid script changes nothing";
    }
}

TEST(Script, ExamplesAreValid) {
    for (const auto& entry : std::filesystem::directory_iterator(SOURCE_FOLDER "/examples/simulator")) {
        if (entry.path().extension() != ".json") continue;
        EXPECT_NO_THROW(simulator::readScript(entry.path())) << entry.path();
    }
}

TEST(Script, RejectsMalformedCharts) {
    const std::string chart(simulator::colorCheckerCsv);
    const std::string header = chart.substr(0, chart.find('\n') + 1);
    const std::string line = "patch,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2,2";
    const std::vector<std::pair<std::string, std::string>> cases{
        {header + line, ""},
        {header, "t, line 1: there are no patches"},
        {header + line + ".1", "t, line 2: \"2.1\" is not a number from 0 to 2"},
        {line, "t, line 1: \"2\" is not the wavelength 380"},
    };
    for (const auto& [text, reason] : cases) {
        EXPECT_EQ(errorOf([&csv = text] { simulator::parseChart(csv, "t"); }), reason);
    }
}

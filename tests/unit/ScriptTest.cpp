#include "simulator/Script.h"

#include "tests/support/Support.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <regex>

namespace {

const std::filesystem::path sources = SOURCE_FOLDER;

} // namespace

TEST(Script, TellsWhatIsWrongAndWhatWouldBeRight) {
    struct Case {
        std::string text;
        std::string message;
    };
    const TempFolder folder;
    const std::string file = (folder / "script.json").string();
    const std::string shortChart = (folder / "short.csv").string();
    const std::string emptyChart = (folder / "empty.csv").string();
    const std::string noChart = (folder / "none.csv").string();
    const std::string header = linesOf(std::string(simulator::colorCheckerCsv)).front() + "\n";
    writeFile(shortChart, header + "patch,0.5\n");
    writeFile(emptyChart, header);
    const std::string recording = "recording.jsonl";
    std::filesystem::copy_file(sources / "examples/simulator" / recording, folder / recording);
    const std::string places = R"("function", "key", "call", "times", "result", "text", "number", "output", "size")";
    const std::vector<Case> cases{
        {"", "line 1: this is not JSON: "},
        {"{\n\"light\": {\"noise\": 0.1,}}", "line 2: this is not JSON: "},
        {"[]", "line 1: [] is not an object in curly brackets"},
        {"{\n\n\"lamp\": 1}", "line 3: there is no \"lamp\" here; there may be \"instruments\", \"chart\", "},
        {"{\"place\": \"chart\",\n\"place\": \"chart\"}", "line 2: \"place\" stands here twice"},
        {"{\"place\": \"table\"}", "line 1: \"table\" is no place; there are \"chart\" and \"white reference\""},
        {"{\"instruments\": \"SIM1\"}", "line 1: \"SIM1\" is not a list in square brackets"},
        {"{\"instruments\": [1]}", "line 1: 1 is not a text"},
        {"{\"instruments\": [\"SIM1\",\n\"SIM1\"]}",
         "line 2: \"SIM1\" is the serial number of another instrument, too"},
        {"{\"chart\": \"none.csv\"}", "line 1: " + noChart + ": the file can't be read: No such file "},
        {"{\n\"chart\": \".\"}", "line 2: " + (folder / ".").string() + ": the file can't be read: "},
        {"{\"chart\": \"short.csv\"}", "line 1: the chart " + shortChart + " is wrong: line 2: there are 2 fields, "},
        {"{\"chart\": \"empty.csv\"}", "line 1: the chart " + emptyChart + " has no patches"},
        {"{\"light\":\n{\"noise\":\n0.2}}", "line 2: 0.2 is not a number from 0.0 to 0.1"},
        {"{\"light\": {\"drift\": \"much\"}}", "line 1: \"much\" is not a number from -0.1 to 0.1"},
        {"{\"light\": {\"seed\": 1.5}}", "line 1: 1.5 is not a whole number from 0 to 2147483647"},
        {"{\"button\": {\"polls\": -1}}", "line 1: -1 is not a whole number from 0 to 1000000000"},
        {"{\"button\": {\"polls\": 18446744073709551615}}", "line 1: 18446744073709551615 is not a whole number"},
        {"{\"button\": {\"milliseconds\": 3600001}}", "line 1: 3600001 is not a whole number from 0 to 3600000"},
        {"{\"button\": {\"never\": 1}}", "line 1: 1 is neither true nor false"},
        {"{\"samples\": {\"count\": 1,\n\"more\": 1}}", "line 1: either \"count\" or \"more\" says how many samples"},
        {"{\"latency\": {\"Calibrate\": 1}}",
         "line 1: \"Calibrate\" is no function of the SDK library; there are I1PRO3_"},
        {"{\"unplug\": {\"call\": 1}}", "line 1: \"function\" is missing: at which function's call to unplug"},
        {"{\"faults\": [{\"result\": 1},\n{\"reslt\": 1}]}",
         "line 2: there is no \"reslt\" here; there may be " + places},
        {"{\"faults\": [{\"times\": \"often\"}]}", "line 1: \"often\" is neither a number nor \"always\""},
        {"{\"faults\": [{}]}", "line 1: a fault without a key would answer any call"},
        {"{\"faults\": [{\"text\": \"lamp\"}]}", "line 1: a \"text\" or \"number\" tells of a \"result\" other than 0"},
        {"{\"faults\": [{\"function\": \"I1PRO3_GetDevices\", \"output\": \"\"}]}",
         "line 1: I1PRO3_GetDevices hands out no text for \"output\" to replace"},
        {"{\"faults\": [{\"function\": \"I1PRO3_Calibrate\", \"size\": 1}]}",
         "line 1: I1PRO3_Calibrate has no size or count for \"size\" to replace"},
        {"{\"replay\": \"" + recording + "\",\n\"faults\": []}",
         "line 2: a replay answers as was recorded: beside it may only stand "},
        {"{\"place\": \"" + std::string(500, 'x') + "\"}", "line 1: \"" + std::string(59, 'x') + " ... is no place"},
        {"{\"light\":\n" + std::string(500, '[') + "}", "line 2: too much stands within one another"},
        {"{\"light/noise\": 1, \"light\": {\"noise\": 0.1}}", "line 1: there is no \"light/noise\" here; "},
        {"{\"light\": {\"noise\": 1e400}}", "line 1: this is not JSON: number overflow parsing '1e400'"},
        {"{\"faults\": [{\"result\": 2147483648}]}", "line 1: 2147483648 is not a whole number from -2147483648 to "},
    };
    for (const Case& each : cases) {
        simulator::Script script;
        try {
            applyScript(file, each.text, script);
            ADD_FAILURE() << each.text << " was taken";
        } catch (const simulator::ScriptError& error) {
            EXPECT_TRUE(std::string(error.what()).starts_with(file + ", " + each.message)) << error.what();
        }
        EXPECT_EQ(script.instruments, std::vector<std::string>{"SIM1"}) << "a wrong script changes nothing";
    }
}

TEST(Script, TheDocumentHasEachKey) {
    std::vector<std::string> keys;
    const std::regex row("\\| `([a-z .]+)` \\|.*");
    for (const std::string& line : linesOf(readFile(sources / "docs/simulator.md"))) {
        std::smatch parts;
        if (std::regex_match(line, parts, row)) keys.push_back(parts[1]);
    }
    std::vector<std::string> known = simulator::scriptKeys();
    std::sort(keys.begin(), keys.end());
    std::sort(known.begin(), known.end());
    EXPECT_EQ(keys, known);
}

TEST(Script, EachKeyHasAnExampleAndEachExampleIsRight) {
    std::string examples;
    for (const auto& entry : std::filesystem::directory_iterator(sources / "examples/simulator")) {
        if (entry.path().extension() != ".json") continue;
        EXPECT_NO_THROW(simulator::readScript(entry.path())) << entry.path();
        examples += readFile(entry.path());
    }
    for (const std::string& key : simulator::scriptKeys()) {
        const std::string name = key.substr(key.find('.') + 1);
        EXPECT_NE(examples.find('"' + name + '"'), std::string::npos) << key;
    }
}

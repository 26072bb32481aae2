#include "simulator/Trace.h"

#include "common/Environment.h"
#include "common/LibraryNames.h"
#include "tests/support/SimulatedSdk.h"
#include "tests/support/Support.h"
#include "tests/unit/SdkHost.h"

#include <gtest/gtest.h>
#include <iomanip>
#include <regex>
#include <sstream>

namespace fs = std::filesystem;

namespace {

const fs::path recorderFile = common::programFolder() / "recorder" / common::sdkFileName;

using Lines = std::vector<std::string>;

const std::string heading = "{\"trace\":1,\"simulated\":true}\n";
const std::string getDevices =
    R"({"function":"I1PRO3_GetDevices","arguments":{},"result":0,"outputs":{"count":1,"devices":["SIM1"]}})"
    "\n";

/// Returns a script in which a key has a path as its value.
std::string scriptWith(const std::string& key, const fs::path& file) {
    std::ostringstream text;
    text << '{' << std::quoted(key) << ':' << std::quoted(file.string()) << '}';
    return text.str();
}

/// Returns the calls of a trace without their times, and with the recorder's device names replaced by the simulator's.
Lines callsOf(const fs::path& trace) {
    const std::regex times(R"("time":"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z","microseconds":\d+,)");
    const std::string text = std::regex_replace(readFile(trace), times, "");
    Lines lines = linesOf(std::regex_replace(text, std::regex("device "), "SIM"));
    lines.erase(lines.begin());
    return lines;
}

/// Repeats the calls of a trace.
void play(const fs::path& trace, SdkHost& host) {
    for (const auto& [call, answer, line] : simulator::readTrace(trace)) {
        const std::string words = wordsOf(call);
        EXPECT_EQ(errorOf([&] { host.call(words); }), answer.exception.value_or("")) << words;
    }
}

class Trace : public testing::Test {
protected:
    Trace() { I1PRO3_SimulatorUse(nullptr); } // before a test sets I1PRO3_TRACE
    ~Trace() override { I1PRO3_SimulatorUse(nullptr); }

    void replay() const { beginScript(scriptWith("replay", file)); }

    SdkHost host;
    const TempFolder folder;
    const fs::path file = folder / "trace.jsonl";
};

} // namespace

/// Each data file is a session: a script in the first line, then calls with their results.
TEST_F(Trace, IsTheSameFromSimulatorRecorderAndReplay) {
    const EnvironmentVariable library("I1PRO3_RECORDER_SDK", simulatorFile.string());
    const EnvironmentVariable trace("I1PRO3_RECORDER_TRACE", file.string());
    for (const auto& session : fs::directory_iterator(SOURCE_FOLDER "/tests/unit/data")) {
        if (session.path().extension() != ".jsonl") continue;
        SCOPED_TRACE(session.path());
        const Lines expected = callsOf(session.path());
        std::smatch script;
        const std::string first = linesOf(readFile(session)).at(0);
        std::regex_match(first, script, std::regex(R"(\{"trace":1,"script":(.*)\})"));
        const std::string source = script.empty() ? scriptWith("replay", session) : script.str(1);
        {
            beginScript(source);
            SdkHost recorder(recorderFile);
            play(session, recorder);
        }
        EXPECT_TRUE(readFile(file).starts_with(R"({"trace":1,"simulated":true,)"));
        EXPECT_EQ(callsOf(file), expected);
        for (const std::string& other : {scriptWith("replay", file), source}) {
            const fs::path again = folder / "again.jsonl";
            beginScript(other);
            useScript(scriptWith("trace", again));
            play(session, host);
            EXPECT_EQ(callsOf(again), expected);
            I1PRO3_SimulatorUse(nullptr);
            fs::remove(again);
        }
        fs::remove(file);
    }
}

TEST_F(Trace, RecordsTheTimesOfCalls) {
    beginScript(scriptWith("trace", file));
    useScript(R"({"latency": {"I1PRO3_GetDevices": 50}})");
    host.call("GetDevices");
    const std::string text = readFile(file);
    EXPECT_TRUE(std::regex_search(text, std::regex(R"("microseconds":[5-9]\d{4},)"))) << text;
    EXPECT_TRUE(text.starts_with(R"({"trace":1,"simulated":true,"library":"simulated i1Pro 3 with the Color)"));
}

TEST_F(Trace, ReplayReportsTheFirstDifferentCall) {
    const std::string setOption =
        R"({"function":"I1PRO3_SetOption","arguments":{"device":"SIM1","key":"K","value":"1"},"result":0})";
    writeFile(file, heading + getDevices + setOption);
    const std::string difference =
        "Call 2 departs from the trace " + file.string() +
        R"(: the host called I1PRO3_SetOption {"device":"SIM1","key":"K","value":"2"})"
        R"(, the trace has I1PRO3_SetOption {"device":"SIM1","key":"K","value":"1"} in line 3)";
    for (const auto& [option, error] : {std::pair<std::string, std::string>{"2", difference}, {"1", "Call 3 "}}) {
        replay();
        EXPECT_EQ(host.call("GetDevices"), 0);
        EXPECT_EQ(host.call("SetOption SIM1 K " + option), option == "1" ? 0 : 10);
        EXPECT_EQ(host.call("SetOption SIM1 K 1"), 10) << "a replay doesn't recover from a difference";
        EXPECT_TRUE(host.lastError().starts_with(error)) << host.lastError();
    }
}

TEST_F(Trace, RejectsMalformedLines) {
    const auto lineOf = [](const std::string& function, const std::string& arguments, const std::string& outputs) {
        return heading + R"({"function":"I1PRO3_)" + function + R"(","arguments":)" + arguments +
               R"(,"result":0,"outputs":)" + outputs + "}";
    };
    const std::vector<std::pair<std::string, std::string>> cases{
        {R"({"trace":2})", ", line 1: not a trace; the first line must start with {\"trace\":1"},
        {heading + getDevices + "{", ", line 3: "},
        {lineOf("GetGlobalOption", R"({"key":"K","size":9})", R"({"text":[256]})"),
         ", line 2: /outputs/text/0: must be "},
        {lineOf("GetSpectrum", R"({"device":"SIM1","sample":0})", R"({"values":[1,2,3]})"),
         ", line 2: /outputs: 3 values; expected 36"},
        {lineOf("Calibrate", "{}", "{}"), ", line 2: /arguments: must be the arguments of I1PRO3_Calibrate"},
        {lineOf("GetDevices", "{}", R"({"count":5,"devices":["A"]})"), ", line 2: /outputs: \"count\" is not "},
    };
    for (const auto& [text, message] : cases) {
        writeFile(file, text);
        const std::string error = errorOf([&] { simulator::readTrace(file); });
        EXPECT_TRUE(error.starts_with(file.string() + message)) << text << error;
    }
}

TEST_F(Trace, DoesNotOverwriteEarlierTraces) {
    const EnvironmentVariable variable("I1PRO3_TRACE", file.string());
    for (const char* const name : {"trace.jsonl", "trace.2.jsonl", "trace.3.jsonl"}) {
        I1PRO3_SimulatorUse(nullptr);
        host.call("GetDevices");
        EXPECT_EQ(callsOf(folder / name).size(), 1U) << name;
    }
    for (const fs::path& nowhere : {folder / "missing" / "trace.jsonl", folder / "."}) {
        const EnvironmentVariable other("I1PRO3_TRACE", nowhere.string());
        EXPECT_NE(I1PRO3_SimulatorUse(nullptr), nullptr);
        EXPECT_EQ(host.call("OpenDevice null"), 9);
    }
}

TEST_F(Trace, RecorderReportsMissingSettings) {
    const fs::path plain =
        (common::programFolder() / "plain").replace_extension(fs::path(common::moduleFileName).extension());
    const std::vector<std::array<std::string, 3>> cases{
        {"", file.string(), "the environment variable I1PRO3_RECORDER_SDK is not set; "},
        {(folder / "none").string(), file.string(), (folder / "none").string() + ": "},
        {common::sdkFileName, file.string(), "I1PRO3_RECORDER_SDK names the recorder itself, "},
        {plain.string(), file.string(), plain.string() + " is not an SDK library: it has no I1PRO3_GetDevices"},
        {simulatorFile.string(), "", "the environment variable I1PRO3_RECORDER_TRACE is not set; "},
    };
    for (const auto& [sdk, path, message] : cases) {
        const EnvironmentVariable library("I1PRO3_RECORDER_SDK", sdk);
        const EnvironmentVariable trace("I1PRO3_RECORDER_TRACE", path);
        SdkHost recorder(recorderFile);
        EXPECT_EQ(recorder.call("Calibrate null"), 9);
        EXPECT_TRUE(recorder.lastError().starts_with("Recorder: " + message)) << recorder.lastError();
        EXPECT_FALSE(fs::exists(file));
    }
}

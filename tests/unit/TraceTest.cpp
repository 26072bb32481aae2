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
    for (const auto& [call, answer, line] : simulator::readTrace(trace).calls) {
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
    const fs::path again = folder / "again.jsonl";
    for (const auto& session : fs::directory_iterator(SOURCE_FOLDER "/tests/unit/data")) {
        if (session.path().extension() != ".jsonl") continue;
        SCOPED_TRACE(session.path());
        const Lines expected = callsOf(session.path());
        const std::string first = linesOf(readFile(session)).at(0);
        const std::string mark = "\"script\":";
        const std::size_t begin = first.find(mark);
        const std::string script = begin != std::string::npos
                                       ? first.substr(begin + mark.size(), first.size() - begin - mark.size() - 1)
                                       : scriptWith("replay", session);
        {
            beginScript(script);
            SdkHost recorder(recorderFile);
            play(session, recorder);
        }
        EXPECT_TRUE(readFile(file).starts_with(R"({"trace":1,"simulated":true,)"));
        EXPECT_EQ(callsOf(file), expected);

        replay();
        useScript(scriptWith("trace", again));
        play(session, host);
        EXPECT_EQ(callsOf(again), expected);

        beginScript(script);
        fs::remove(again);
        useScript(scriptWith("trace", again));
        play(session, host);
        EXPECT_EQ(callsOf(again), expected);
        I1PRO3_SimulatorUse(nullptr);
        fs::remove(again);
        fs::remove(file);
    }
}

TEST_F(Trace, RecordsTheTimesOfCalls) {
    beginScript(scriptWith("trace", file));
    useScript(R"({"latency": {"I1PRO3_GetDevices": 50}})");
    host.call("GetDevices");
    host.call("OpenDevice SIM1");
    const Lines lines = linesOf(readFile(file));
    EXPECT_TRUE(std::regex_search(lines.at(1), std::regex(R"("microseconds":[5-9]\d{4},)"))) << lines[1];
    const auto timeOf = [](const std::string& line) { return line.substr(line.find("\"time\""), 35); };
    EXPECT_LT(timeOf(lines[1]), timeOf(lines.at(2)));
    EXPECT_TRUE(lines[0].starts_with(R"({"trace":1,"simulated":true,"library":"simulated i1Pro 3 with the Color)"));
}

TEST_F(Trace, ReplayReportsTheFirstDifferentCall) {
    const std::string setOption =
        R"({"function":"I1PRO3_SetOption","arguments":{"device":"SIM1","key":"K","value":"1"},"result":0})";
    writeFile(file, heading + getDevices + setOption);
    replay();
    EXPECT_EQ(host.call("GetDevices"), 0);
    EXPECT_EQ(host.call("SetOption SIM1 K 2"), 10);
    const std::string error = "Call 2 departs from the trace " + file.string() +
                              R"(: the host called I1PRO3_SetOption {"device":"SIM1","key":"K","value":"2"})"
                              R"(, the trace has I1PRO3_SetOption {"device":"SIM1","key":"K","value":"1"} in line 3)";
    EXPECT_EQ(host.call("SetOption SIM1 K 1"), 10) << "a replay doesn't recover from a difference";
    EXPECT_EQ(host.lastError(), error);
    replay();
    EXPECT_EQ(host.call("GetDevices") + host.call("SetOption SIM1 K 1"), 0);
    EXPECT_EQ(host.call("Calibrate SIM1"), 10);
    EXPECT_TRUE(host.lastError().ends_with(", the trace ends before it")) << host.lastError();
}

TEST_F(Trace, RejectsMalformedLines) {
    const std::string neither = R"(, line 2: expected either a "result" or an "exception")";
    const std::string device = R"({"device":"SIM1"})";
    const auto lineOf = [](const std::string& function, const std::string& arguments, const std::string& outputs) {
        return heading + R"({"function":"I1PRO3_)" + function + R"(","arguments":)" + arguments +
               R"(,"result":0,"outputs":)" + outputs + "}";
    };
    const std::string getOption = R"({"device":"SIM1","key":"K","size":9})";
    const std::string getSpectrum = R"({"device":"SIM1","sample":0})";
    const std::vector<std::pair<std::string, std::string>> cases{
        {"", ", line 1: "},
        {"[]", ", line 1: not a trace; the first line must start with {\"trace\":1"},
        {R"({"trace":2})", ", line 1: not a trace; "},
        {heading + getDevices + "{", ", line 3: "},
        {heading + R"({"result":0})", ", line 2: "},
        {heading + R"({"function":"I1PRO3_Calibrate","arguments":{}})", neither},
        {lineOf("GetOption", getOption, R"({"text":[256]})"),
         ", line 2: /outputs/text/0: must be a whole number from 0 to 255"},
        {lineOf("GetSpectrum", getSpectrum, R"({"values":["much"]})"),
         ", line 2: /outputs/values/0: must be a number, \"inf\""},
        {lineOf("GetSpectrum", getSpectrum, R"({"values":[1,2,3]})"), ", line 2: /function: 3 values; expected 36"},
        {lineOf("Calibrate", device, R"({"size":1})"),
         ", line 2: /function: I1PRO3_Calibrate does not have these outputs"},
        {lineOf("Calibrate", "{}", "{}"), ", line 2: /arguments: \"device\" is missing"},
        {lineOf("Calibrate", getSpectrum, "{}"), ", line 2: /arguments: I1PRO3_Calibrate does not have these"},
        {lineOf("GetDevices", R"({"list":1})", "{}"), ", line 2: /arguments/list: a pointer to an output can "},
        {lineOf("GetDevices", "{}", R"({"count":5,"devices":["A"]})"),
         ", line 2: /function: \"count\" is not the number "},
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
        const std::string error = I1PRO3_SimulatorUse(nullptr);
        EXPECT_TRUE(error.starts_with("the trace " + nowhere.string() + " can't be created: ")) << error;
        EXPECT_EQ(host.call("OpenDevice null"), 9);
    }
}

TEST_F(Trace, RecorderReportsMissingSettings) {
    const std::string missing = (folder / "missing" / "none").string();
    const fs::path extension = fs::path(common::moduleFileName).extension();
    const std::string plain = (common::programFolder() / "plain").replace_extension(extension).string();
    const std::vector<std::array<std::string, 3>> cases{
        {"", file.string(), "the environment variable I1PRO3_RECORDER_SDK is not set; it names the vendor's library "},
        {missing, file.string(), missing + ": "},
        {common::sdkFileName, file.string(), "I1PRO3_RECORDER_SDK names the recorder itself, " + recorderFile.string()},
        {plain, file.string(), plain + " is not an SDK library: it has no I1PRO3_GetDevices"},
        {simulatorFile.string(), "", "the environment variable I1PRO3_RECORDER_TRACE is not set; it names the file "},
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

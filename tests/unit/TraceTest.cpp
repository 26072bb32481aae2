#include "simulator/Trace.h"

#include "host/System.h"
#include "i1pro3/I1PRO3_SDK.h"
#include "loader/SharedLibrary.h"
#include "simulator/Control.h"
#include "simulator/ScriptError.h"
#include "tests/support/Support.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <regex>

namespace fs = std::filesystem;

namespace {

using Lines = std::vector<std::string>;

const fs::path simulatorFile = host::programFolder() / host::sdkFileName;
const fs::path recorderFile = host::programFolder() / "recorder" / host::sdkFileName;

const std::string heading = "{\"trace\":1,\"simulated\":true}\n";
const std::string getDevices =
    R"({"function":"I1PRO3_GetDevices","arguments":{},"result":0,"outputs":{"count":1,"devices":["SIM1"]}})"
    "\n";

/// A library with the SDK's functions.
class Sdk {
public:
    explicit Sdk(const fs::path& file) : library(file) {}

    template <class... Parameters, class... Arguments>
    std::int32_t call(std::int32_t (&/*declared*/)(Parameters...), const char* name, Arguments... arguments) const {
        return reinterpret_cast<std::int32_t (*)(Parameters...)>(library.find(name))(arguments...);
    }

    std::string lastErrorText() const;

private:
    loader::SharedLibrary library;
};

#define CALL(sdk, name, ...) (sdk).call(name, #name __VA_OPT__(, ) __VA_ARGS__)

std::string Sdk::lastErrorText() const {
    std::array<char, 1000> text{};
    std::uint32_t size = text.size();
    CALL(*this, I1PRO3_GetGlobalOption, "LastErrorText", text.data(), &size);
    return text.data();
}

I1PRO3_DeviceHandle firstDevice(const Sdk& sdk) {
    I1PRO3_DeviceHandle* list = nullptr;
    std::uint32_t count = 0;
    EXPECT_EQ(CALL(sdk, I1PRO3_GetDevices, &list, &count), 0);
    return count > 0 ? list[0] : nullptr;
}

/// A spot measurement with all kinds of arguments, answers and outputs.
void makeCalls(const Sdk& sdk) {
    std::array<char, 5> text{};
    std::uint32_t size = 4;
    std::array<float, 3> lab{};
    std::array<float, 36> spectrum{};
    I1PRO3_DeviceHandle const device = firstDevice(sdk);
    CALL(sdk, I1PRO3_GetDevices, nullptr, &size);
    CALL(sdk, I1PRO3_OpenDevice, nullptr);
    CALL(sdk, I1PRO3_OpenDevice, &size);
    CALL(sdk, I1PRO3_OpenDevice, device);
    CALL(sdk, I1PRO3_GetOption, device, "SerialNumber", text.data(), &size);
    CALL(sdk, I1PRO3_GetOption, device, "SerialNumber", text.data(), &size);
    CALL(sdk, I1PRO3_GetOption, device, "AvailableIlluminationsKey", text.data(), &size);
    CALL(sdk, I1PRO3_SetOption, device, "\xE4", nullptr);
    CALL(sdk, I1PRO3_SetOption, device, "MeasurementMode", "ReflectanceSpot");
    CALL(sdk, I1PRO3_Calibrate, device);
    CALL(sdk, I1PRO3_TriggerMeasurement, device);
    CALL(sdk, I1PRO3_GetTriStimulus, device, lab.data(), 0);
    CALL(sdk, I1PRO3_GetSpectrum, device, spectrum.data(), 1);
    EXPECT_THROW(CALL(sdk, I1PRO3_CloseDevice, device), std::runtime_error);
}

/// What they leave in a trace.
const Lines tracedCalls{
    R"({"call":1,T,"function":"I1PRO3_GetDevices","arguments":{},"result":0,"outputs":{"count":1,"devices":["SIM1"]}})",
    R"({"call":2,T,"function":"I1PRO3_GetDevices","arguments":{"list":null},"result":6})",
    R"({"call":3,T,"function":"I1PRO3_OpenDevice","arguments":{"device":null},"result":1})",
    R"({"call":4,T,"function":"I1PRO3_OpenDevice","arguments":{"device":"unknown"},"result":1})",
    R"({"call":5,T,"function":"I1PRO3_OpenDevice","arguments":{"device":"SIM1"},"result":0})",
    R"({"call":6,T,"function":"I1PRO3_GetOption","arguments":{"device":"SIM1","key":"SerialNumber","size":4},"result":5,"outputs":{"size":5}})",
    R"({"call":7,T,"function":"I1PRO3_GetOption","arguments":{"device":"SIM1","key":"SerialNumber","size":5},"result":0,"outputs":{"text":"SIM1"}})",
    R"({"call":8,T,"function":"I1PRO3_GetOption","arguments":{"device":"SIM1","key":"AvailableIlluminationsKey","size":5},"result":-3,"outputs":{"size":9,"text":[85,86,228,255,48],"terminated":false}})",
    R"({"call":9,T,"function":"I1PRO3_SetOption","arguments":{"device":"SIM1","key":[228],"value":null},"result":6})",
    R"({"call":10,T,"function":"I1PRO3_SetOption","arguments":{"device":"SIM1","key":"MeasurementMode","value":"ReflectanceSpot"},"result":0})",
    R"({"call":11,T,"function":"I1PRO3_Calibrate","arguments":{"device":"SIM1"},"result":0})",
    R"({"call":12,T,"function":"I1PRO3_TriggerMeasurement","arguments":{"device":"SIM1"},"result":0})",
    R"({"call":13,T,"function":"I1PRO3_GetTriStimulus","arguments":{"device":"SIM1","sample":0},"result":0,"outputs":{"values":[36.804367,13.894014,14.68289]}})",
    R"({"call":14,T,"function":"I1PRO3_GetSpectrum","arguments":{"device":"SIM1","sample":1},"result":7})",
    R"({"call":15,T,"function":"I1PRO3_CloseDevice","arguments":{"device":"SIM1"},"exception":"simulated exception of I1PRO3_CloseDevice"})",
};

/// The lines of a trace, with T for the time and the microseconds.
Lines linesOfTrace(const fs::path& file) {
    const std::regex times(R"("time":"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z"(,"microseconds":\d+)?)");
    return linesOf(std::regex_replace(readFile(file), times, "T"));
}

Lines callsOfTrace(const fs::path& file) {
    Lines lines = linesOfTrace(file);
    if (!lines.empty()) lines.erase(lines.begin());
    return lines;
}

std::string inJson(const fs::path& path) {
    return simulator::Json(path.string()).dump();
}

void expectLines(const Lines& lines, const Lines& expected) {
    EXPECT_EQ(lines.size(), expected.size());
    for (std::size_t i = 0; i < std::min(lines.size(), expected.size()); ++i) {
        EXPECT_EQ(lines[i], expected[i]);
    }
}

class Traces : public testing::Test {
protected:
    Traces() {
        control.reset();
        control.use(R"({"light": {"noise": 0}})");
        control.answer({.function = "I1PRO3_CloseDevice", .throws = true});
        control.answer({.function = "I1PRO3_GetOption",
                        .argument = "AvailableIlluminationsKey",
                        .result = -3,
                        .output = "UV\xE4\xFF"
                                  "0123456789",
                        .outputSize = 9});
    }
    ~Traces() override { control.reset(); }

    void replay(const fs::path& path) { control.use("{\"replay\": " + inJson(path) + "}"); }
    void trace(const fs::path& path) { control.use("{\"trace\": " + inJson(path) + "}"); }

    /// Records the calls made to the simulated library.
    void record(const fs::path& path) {
        const EnvironmentVariable library("I1PRO3_RECORDER_SDK", simulatorFile.string());
        const EnvironmentVariable trace("I1PRO3_RECORDER_TRACE", path.string());
        makeCalls(Sdk(recorderFile));
    }

    simulator::Control& control = *I1PRO3_SimulatorControl();
    const Sdk sdk{simulatorFile};
    TempFolder folder;
    const fs::path file = folder / "trace.jsonl";
};

} // namespace

TEST_F(Traces, TellOfEachCallAsItIsMade) {
    trace(file);
    const std::string first =
        R"({"trace":1,"simulated":true,"library":"simulated i1Pro 3 with the ColorChecker Classic chart",T})";
    EXPECT_EQ(linesOfTrace(file), Lines{first});
    firstDevice(sdk);
    EXPECT_EQ(callsOfTrace(file), Lines{tracedCalls.front()});
    trace(folder / "all.jsonl");
    makeCalls(sdk);
    expectLines(callsOfTrace(folder / "all.jsonl"), tracedCalls);
}

TEST_F(Traces, OfTheRecorderAreTheSame) {
    record(file);
    Lines lines = linesOfTrace(file);
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.front(),
              R"({"trace":1,"simulated":true,"library":)" +
                  inJson(simulatorFile.string() + ": simulated i1Pro 3 with the ColorChecker Classic chart") + ",T}");
    lines.erase(lines.begin());
    for (std::string& line : lines) {
        line = std::regex_replace(line, std::regex("device 1"), "SIM1");
    }
    expectLines(lines, tracedCalls);
}

TEST_F(Traces, AreReplayedAsTheyAre) {
    trace(file);
    makeCalls(sdk);
    control.reset();
    replay(file);
    trace(folder / "again.jsonl");
    makeCalls(sdk);
    expectLines(callsOfTrace(folder / "again.jsonl"), tracedCalls);
}

TEST_F(Traces, ReplayWhatWasRecorded) {
    record(file);
    control.reset();
    replay(file);
    trace(folder / "again.jsonl");
    makeCalls(sdk);
    expectLines(callsOfTrace(folder / "again.jsonl"), callsOfTrace(file));
}

TEST_F(Traces, TellOfTheFirstCallThatDeparts) {
    const std::string before = "Call 2 departs from the trace " + file.string() + ": the host called ";
    writeFile(file,
              heading + getDevices +
                  R"({"function":"I1PRO3_SetOption","arguments":{"device":"SIM1","key":"K","value":"1"},"result":0})");
    struct Case {
        std::function<std::int32_t(I1PRO3_DeviceHandle)> call;
        std::string made;
    };
    const std::vector<Case> cases{
        {[&](void* device) { return CALL(sdk, I1PRO3_Calibrate, device); }, R"(I1PRO3_Calibrate {"device":"SIM1"})"},
        {[&](void* device) { return CALL(sdk, I1PRO3_SetOption, device, "K", "2"); },
         R"(I1PRO3_SetOption {"device":"SIM1","key":"K","value":"2"})"},
        {[&](void* /*device*/) { return CALL(sdk, I1PRO3_SetOption, &folder, "K", "1"); },
         R"(I1PRO3_SetOption {"device":"unknown","key":"K","value":"1"})"},
    };
    for (const Case& each : cases) {
        replay(file);
        I1PRO3_DeviceHandle const device = firstDevice(sdk);
        EXPECT_EQ(each.call(device), 10);
        EXPECT_EQ(sdk.lastErrorText(),
                  before + each.made +
                      R"(, the trace has I1PRO3_SetOption {"device":"SIM1","key":"K","value":"1"} in line 3)");
        EXPECT_EQ(CALL(sdk, I1PRO3_GetNumberOfAvailableSamples, device), -10);
        EXPECT_EQ(CALL(sdk, I1PRO3_SetOption, device, "K", "1"), 10) << "what was missed is not made up for";
        EXPECT_TRUE(sdk.lastErrorText().starts_with(before + each.made)) << "the first departure is told";
    }
    replay(file);
    EXPECT_EQ(CALL(sdk, I1PRO3_SetOption, firstDevice(sdk), "K", "1"), 0);
    EXPECT_TRUE(sdk.lastErrorText().ends_with(R"(, the trace ends before it)")) << sdk.lastErrorText();
}

TEST_F(Traces, KeepValuesThatAreNoNumbers) {
    const std::string call =
        R"({"function":"I1PRO3_GetTriStimulus","arguments":{"device":"SIM1","sample":0},"result":0,)"
        R"("outputs":{"values":["nan",3.4028235e+38,-1e-45]}})";
    writeFile(file, heading + getDevices + call);
    replay(file);
    trace(folder / "again.jsonl");
    std::array<float, 3> lab{};
    EXPECT_EQ(CALL(sdk, I1PRO3_GetTriStimulus, firstDevice(sdk), lab.data(), 0), 0);
    EXPECT_TRUE(std::isnan(lab[0]));
    EXPECT_EQ(lab[1], std::numeric_limits<float>::max());
    EXPECT_EQ(lab[2], -std::numeric_limits<float>::denorm_min());
    EXPECT_NE(readFile(folder / "again.jsonl").find("\"values\":[\"nan\",3.4028235e+38,-1e-45]"), std::string::npos);
}

TEST_F(Traces, ThatAreWrongAreToldOf) {
    const std::string neither = ", line 2: a call has either a \"result\" or an \"exception\"";
    struct Case {
        std::string text;
        std::string message;
    };
    const std::vector<Case> cases{
        {"", ", line 1: this is not JSON: "},
        {"[]", ", line 1: this is no trace: the first line of one begins with {\"trace\":1"},
        {R"({"trace":2})", ", line 1: this is no trace: "},
        {R"({"trace":"1"})", ", line 1: this is no trace: "},
        {heading + "\n", ", line 2: this is not JSON: "},
        {heading + getDevices + "{", ", line 3: this is not JSON: "},
        {heading + R"({"function":"I1PRO3_Trigger","arguments":{},"result":0})",
         ", line 2: \"I1PRO3_Trigger\" is no function of the SDK library"},
        {heading + R"({"function":"I1PRO3_GetSpectrum","arguments":{},"result":0,"outputs":{"values":[1,2,3]}})",
         ", line 2: there are 3 values; I1PRO3_GetSpectrum has 36"},
        {heading + R"({"function":"I1PRO3_Calibrate","reslt":1})", ", line 2: there is no \"reslt\" here; "},
        {heading + R"({"function":"I1PRO3_GetOption","outputs":{"text":[256]}})",
         ", line 2: 256 is not a whole number "},
        {heading + R"({"arguments":{},"result":0})", ", line 2: the \"function\" of the call is missing"},
        {heading + R"({"function":"I1PRO3_Calibrate","result":0})",
         ", line 2: the \"arguments\" of the call is missing"},
        {heading + R"({"function":"I1PRO3_Calibrate","arguments":{}})", neither},
        {heading + R"({"function":"I1PRO3_Calibrate","arguments":{},"result":0,"exception":"x"})", neither},
        {heading + R"({"function":"I1PRO3_Calibrate","arguments":{},"result":0,"outputs":{"size":1}})",
         ", line 2: I1PRO3_Calibrate does not hand out all of these \"outputs\""},
        {heading +
             R"({"function":"I1PRO3_GetDevices","arguments":{},"result":0,"outputs":{"count":5,"devices":["A"]}})",
         ", line 2: \"count\" is not that of the \"devices\""},
        {heading + R"({"function":"I1PRO3_GetSpectrum","outputs":{"values":["much"]}})",
         ", line 2: \"much\" is neither a number nor "},
    };
    for (const Case& each : cases) {
        writeFile(file, each.text);
        try {
            simulator::readTrace(file);
            ADD_FAILURE() << each.text << " was taken";
        } catch (const simulator::ScriptError& error) {
            EXPECT_TRUE(std::string(error.what()).starts_with(file.string() + each.message)) << error.what();
        }
    }
    const EnvironmentVariable script("I1PRO3_SIMULATOR", (folder / "script.json").string());
    writeFile(folder / "script.json", "{\n\"replay\": \"trace.jsonl\"}");
    control.reset();
    EXPECT_EQ(CALL(sdk, I1PRO3_OpenDevice, nullptr), 9);
    EXPECT_TRUE(sdk.lastErrorText().starts_with((folder / "script.json").string() + ", line 2: " + file.string() +
                                                ", line 2: "))
        << sdk.lastErrorText();
}

TEST_F(Traces, HandOutWhatTheHostHasRoomFor) {
    const std::string call =
        R"({"function":"I1PRO3_GetOption","arguments":{"device":"SIM1","key":"K","size":4},"result":0,)"
        R"("outputs":{"size":9,"text":"a longer text"}})";
    writeFile(file, heading + getDevices + call);
    replay(file);
    std::array<char, 6> text{"-----"};
    std::uint32_t size = 4;
    EXPECT_EQ(CALL(sdk, I1PRO3_GetOption, firstDevice(sdk), "K", text.data(), &size), 0);
    EXPECT_STREQ(text.data(), "a lo-");
    EXPECT_EQ(size, 9U);
}

TEST_F(Traces, OfTheRecorderReadNoMoreThanThereIs) {
    const EnvironmentVariable library("I1PRO3_RECORDER_SDK", simulatorFile.string());
    const EnvironmentVariable trace("I1PRO3_RECORDER_TRACE", file.string());
    const Sdk recorder(recorderFile);
    const auto text = std::make_unique<std::array<char, 4>>();
    std::uint32_t size = 1'000'000'000;
    EXPECT_EQ(CALL(recorder, I1PRO3_GetGlobalOption, "LastErrorText", text->data(), &size), 0);
    EXPECT_NE(readFile(file).find(R"("result":0,"outputs":{"text":""}})"), std::string::npos);
}

TEST_F(Traces, LeaveEarlierOnesAlone) {
    const EnvironmentVariable variable("I1PRO3_TRACE", file.string());
    for (int i = 0; i < 3; ++i) {
        control.reset();
        firstDevice(sdk);
    }
    control.reset();
    for (const char* const name : {"trace.jsonl", "trace.2.jsonl", "trace.3.jsonl"}) {
        EXPECT_EQ(callsOfTrace(folder / name), Lines{tracedCalls.front()}) << name;
    }
    for (const fs::path& nowhere : {folder / "missing" / "trace.jsonl", folder / "."}) {
        const EnvironmentVariable other("I1PRO3_TRACE", nowhere.string());
        control.reset();
        EXPECT_EQ(CALL(sdk, I1PRO3_OpenDevice, nullptr), 9);
        EXPECT_TRUE(sdk.lastErrorText().starts_with("the trace " + nowhere.string() + " can't be created: "))
            << sdk.lastErrorText();
    }
}

TEST_F(Traces, OfAMissingLibraryAreToldOf) {
    struct Case {
        std::string library;
        std::string trace;
        std::string message;
    };
    const std::string missing = (folder / "missing" / "none").string();
    const fs::path extension = fs::path(host::moduleFileName).extension();
    const std::string plain = (host::programFolder() / "plain").replace_extension(extension).string();
    const std::vector<Case> cases{
        {"", file.string(), "the environment variable I1PRO3_RECORDER_SDK is not set; it names the vendor's library "},
        {missing, file.string(), missing + ": "},
        {host::sdkFileName, file.string(), "I1PRO3_RECORDER_SDK names the recorder itself, " + recorderFile.string()},
        {plain, file.string(), plain + " is no SDK library: it has no I1PRO3_GetDevices"},
        {simulatorFile.string(), "", "the environment variable I1PRO3_RECORDER_TRACE is not set; it names the file "},
        {simulatorFile.string(), missing, "the trace " + missing + " can't be created: "},
    };
    for (const Case& each : cases) {
        const EnvironmentVariable library("I1PRO3_RECORDER_SDK", each.library);
        const EnvironmentVariable trace("I1PRO3_RECORDER_TRACE", each.trace);
        const Sdk recorder(recorderFile);
        EXPECT_EQ(CALL(recorder, I1PRO3_Calibrate, nullptr), 9);
        EXPECT_TRUE(recorder.lastErrorText().starts_with("Recorder: " + each.message)) << recorder.lastErrorText();
        EXPECT_FALSE(fs::exists(file));
    }
}

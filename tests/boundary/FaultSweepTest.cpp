// Fails every call of the SDK in a whole measuring run, one in each run, and checks what the host gets: answers,
// records, counts, messages and log; each time the same object then runs without a failure.

#include "tests/boundary/ModuleTest.h"

#include <array>

namespace {

constexpr std::size_t patches = 2;

enum class Report { none, sdkError, sampleCount };

/// A call of the run, and what its failure changes.
struct Row {
    std::string call;
    Texts changed;
    Report report;
};

const Texts cleanRun{"open: true",         "status: 1",    "begin: 1",     "continue: 4",
                     "isCalibrated: true", "spot: true 1", "scan: true 2", "spotSpectrum: true 1",
                     "scanSpectra: true 2"};
const Texts notOpened{"open: false",         "status: 0",    "begin: 3",     "continue: 3",
                      "isCalibrated: false", "spot: true 0", "scan: true 0", "spotSpectrum: true 0",
                      "scanSpectra: true 0"};
const Texts notCalibrated{"continue: 3",   "isCalibrated: false",   "spot: false 0",
                          "scan: false 0", "spotSpectrum: false 0", "scanSpectra: false 0"};

// clang-format off
const std::vector<Row> rows{
    {"GetDevices", notOpened, Report::sdkError},
    {"OpenDevice SIM1", notOpened, Report::sdkError},
    {"SetOption SIM1 Colorimetric.Illumination D65", notOpened, Report::sdkError},
    {"SetOption SIM1 Colorimetric.Observer TenDegree", notOpened, Report::sdkError},
    {"SetOption SIM1 ColorSpaceDescription.Type CIELab", notOpened, Report::sdkError},
    {"GetConnectionStatus SIM1", {}, Report::none},
    {"GetOption SIM1 AvailableIlluminationsKey 65000", notOpened, Report::sdkError},
    {"GetConnectionStatus SIM1", {}, Report::none},
    {"GetConnectionStatus SIM1", {}, Report::none},
    // status
    {"GetConnectionStatus SIM1", {}, Report::none},
    {"GetOption SIM1 AvailableIlluminationsKey 65000", {"status: 0"}, Report::none},
    // begin
    {"GetConnectionStatus SIM1", {}, Report::none},
    // continue
    {"GetConnectionStatus SIM1", {}, Report::none},
    {"GetButtonStatusD SIM1", {}, Report::none},
    {"SetOption SIM1 PrecisionCalibration 1", notCalibrated, Report::sdkError},
    {"SetOption SIM1 MeasurementMode ReflectanceSpot", notCalibrated, Report::sdkError},
    {"Calibrate SIM1", notCalibrated, Report::sdkError},
    // isCalibrated
    {"GetConnectionStatus SIM1", {}, Report::none},
    {"SetOption SIM1 MeasurementMode ReflectanceSpot", {"isCalibrated: false"}, Report::none},
    {"TriggerMeasurement SIM1", {}, Report::none},
    // spot
    {"GetConnectionStatus SIM1", {}, Report::none},
    {"SetOption SIM1 MeasurementMode ReflectanceSpot", {"spot: false 0"}, Report::sdkError},
    {"GetButtonStatusD SIM1", {}, Report::none},
    {"TriggerMeasurement SIM1", {"spot: false 0"}, Report::sdkError},
    {"GetTriStimulus SIM1 0", {"spot: false 0"}, Report::sdkError},
    // scan
    {"GetConnectionStatus SIM1", {}, Report::none},
    {"SetOption SIM1 RecognitionKey RecognitionPositionDark", {"scan: false 0"}, Report::sdkError},
    {"SetOption SIM1 PatchesPerLine 2", {"scan: false 0"}, Report::sdkError},
    {"SetOption SIM1 MeasurementMode ReflectanceScan", {"scan: false 0"}, Report::sdkError},
    {"GetButtonStatusD SIM1", {}, Report::none},
    {"TriggerMeasurement SIM1", {"scan: false 0"}, Report::sdkError},
    {"GetNumberOfAvailableSamples SIM1", {"scan: false 0"}, Report::sampleCount},
    {"GetTriStimulus SIM1 0", {"scan: false 0"}, Report::sdkError},
    {"GetTriStimulus SIM1 1", {"scan: false 1"}, Report::sdkError},
    // spotSpectrum
    {"GetConnectionStatus SIM1", {}, Report::none},
    {"SetOption SIM1 MeasurementMode ReflectanceSpot", {"spotSpectrum: false 0"}, Report::sdkError},
    {"GetButtonStatusD SIM1", {}, Report::none},
    {"TriggerMeasurement SIM1", {"spotSpectrum: false 0"}, Report::sdkError},
    {"GetSpectrum SIM1 0", {"spotSpectrum: false 0"}, Report::sdkError},
    // scanSpectra
    {"GetConnectionStatus SIM1", {}, Report::none},
    {"SetOption SIM1 RecognitionKey RecognitionPositionDark", {"scanSpectra: false 0"}, Report::sdkError},
    {"SetOption SIM1 PatchesPerLine 2", {"scanSpectra: false 0"}, Report::sdkError},
    {"SetOption SIM1 MeasurementMode ReflectanceScan", {"scanSpectra: false 0"}, Report::sdkError},
    {"GetButtonStatusD SIM1", {}, Report::none},
    {"TriggerMeasurement SIM1", {"scanSpectra: false 0"}, Report::sdkError},
    {"GetNumberOfAvailableSamples SIM1", {"scanSpectra: false 0"}, Report::sampleCount},
    {"GetSpectrum SIM1 0", {"scanSpectra: false 0"}, Report::sdkError},
    {"GetSpectrum SIM1 1", {"scanSpectra: false 1"}, Report::sdkError},
    // close
    {"GetConnectionStatus SIM1", {}, Report::none},
    {"CloseDevice SIM1", {}, Report::none},
    {"SetGlobalOption Reset All", {}, Report::none},
};
// clang-format on

class FaultSweep : public ModuleTest {
protected:
    FaultSweep() { sdk.use(R"({"button": {"polls": 0}})"); }

    /// A whole run but for the destruction; what each operation gave.
    Texts run() {
        const auto word = [](bool answer) { return std::string(answer ? "true" : "false"); };
        Texts results;
        results.push_back("open: " + word(module.open(handle, "USB")));
        results.push_back("status: " + std::to_string(module.getStatus(handle).aperture));
        results.push_back("begin: " + calibrate(SPM_STEP_BEGIN));
        results.push_back("continue: " + calibrate(SPM_STEP_CONTINUE));
        results.push_back("isCalibrated: " + word(module.isCalibrated(handle)));
        results.push_back("spot: " + read(1));
        results.push_back("scan: " + read(patches));
        results.push_back("spotSpectrum: " + readSpectrum(1));
        results.push_back("scanSpectra: " + readSpectrum(patches));
        module.close(handle);
        return results;
    }

private:
    std::string calibrate(uint32_t step) {
        SPM_CALIBRATION record{0, 0, 0, 0, step};
        module.calibrate(handle, &record);
        return std::to_string(record.step);
    }

    std::string read(int32_t count) {
        std::array<SPM_LAB, patches> values{};
        const bool answer = module.read(handle, values.data(), &count);
        return outcome(answer, count, {values[0].L, values[1].L});
    }

    std::string readSpectrum(int32_t count) {
        std::array<std::array<SPM_REFLECTION, 36>, patches> reflections{};
        std::array<SPM_SPECTRUM, patches> spectra{{{36, reflections[0].data()}, {36, reflections[1].data()}}};
        const bool answer = module.readSpectrum(handle, spectra.data(), &count);
        return outcome(answer, count, {reflections[0][35].value, reflections[1][35].value});
    }

    /// The answer and the count, which must be the number of records that were filled, the first ones.
    static std::string outcome(bool answer, int32_t count, const std::array<float, patches>& values) {
        const bool agrees = (values[0] > 0) == (count > 0) && (values[1] > 0) == (count > 1);
        return (answer ? "true " : "false ") + std::to_string(count) + (agrees ? "" : ", other records filled");
    }
};

Texts withChanges(const Texts& results, const Texts& changes) {
    Texts changed = results;
    for (const std::string& change : changes) {
        const std::string operation = change.substr(0, change.find(':') + 1);
        std::replace_if(
            changed.begin(), changed.end(), [&](const auto& each) { return each.starts_with(operation); }, change);
    }
    return changed;
}

} // namespace

TEST_F(FaultSweep, ACleanRunMakesTheCallsOfTheTable) {
    EXPECT_EQ(run(), cleanRun);
    Texts calls;
    std::transform(rows.begin(), rows.end(), std::back_inserter(calls), [](const Row& row) { return row.call; });
    EXPECT_EQ(takeCalls(), calls);
    EXPECT_TRUE(listener.lines.empty());
    EXPECT_EQ(log(), (Texts{"M7 D: close", "M7 D: open[USB]", "M7 D: open[USB] done", "M7 D: close"}));
}

TEST_F(FaultSweep, EachFailureShowsAndLeavesAWorkingObject) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE("call " + std::to_string(i) + ": " + rows[i].call);
        module.destroy(handle);
        std::filesystem::remove(logFile());
        handle = module.create();
        handle->AddListener(&listener);
        listener.lines.clear();
        sdk.clearAnswers();
        sdk.answer({.position = static_cast<uint32_t>(i + 1), .result = -1, .errorText = "fault"});

        EXPECT_EQ(run(), withChanges(cleanRun, rows[i].changed));
        const std::string message = rows[i].report == Report::sampleCount ? "M7 E1539: invalid number of samples"
                                                                          : "M7 E1539: fault\nErrorNumber: -1";
        const Texts messages = rows[i].report == Report::none ? Texts{} : Texts{message};
        const std::size_t followUps = rows[i].changed == notCalibrated ? 4 : 0; // reads that find it not calibrated
        ASSERT_EQ(listener.lines.size(), messages.size() + followUps);
        EXPECT_TRUE(std::equal(messages.begin(), messages.end(), listener.lines.begin()));
        const std::string written = readText(logFile());
        for (const std::string& line : listener.lines) {
            EXPECT_NE(written.find("] " + line + "\n"), std::string::npos) << line;
        }
        const std::string verdict = rows[i].changed == notOpened ? "failed" : "done";
        EXPECT_NE(written.find("] M7 D: open[USB] " + verdict + "\n"), std::string::npos);

        listener.lines.clear();
        EXPECT_EQ(run(), cleanRun);
        EXPECT_TRUE(listener.lines.empty());
    }
}

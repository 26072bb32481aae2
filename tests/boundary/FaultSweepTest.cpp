// Runs a whole measurement and checks its exact SDK calls. Then repeats it with each call failing in turn: by its
// result, by an exception, and by an exception of another compiler. Each run's results, counts, records and messages
// are compared with those of the run without a fault; afterwards the same object must complete a run without a fault.

#include "tests/boundary/ModuleTest.h"

#include <array>
#include <fmt/format.h>

namespace {

/// An operation of the run and its results: on success, if one of its calls fails, and without a connection. The result
/// of a measurement is its return value, the count, and a digit for each record: 1 if it was filled.
struct Operation {
    std::string name;
    std::string success;
    std::string failure;
    std::string closed;
    Texts calls; ///< "!" marks those whose result is checked
};

const Texts opening{"!GetDevices",
                    "!OpenDevice SIM1",
                    "!SetOption SIM1 Colorimetric.Illumination D65",
                    "!SetOption SIM1 Colorimetric.Observer TenDegree",
                    "!SetOption SIM1 ColorSpaceDescription.Type CIELab",
                    "GetConnectionStatus SIM1",
                    "!GetOption SIM1 AvailableIlluminationsKey 65000",
                    "GetConnectionStatus SIM1",
                    "GetConnectionStatus SIM1"};
const Texts readingStatus{"GetConnectionStatus SIM1", "!GetOption SIM1 AvailableIlluminationsKey 65000"};
const Texts calibrating{"GetConnectionStatus SIM1", "GetButtonStatusD SIM1", "!SetOption SIM1 PrecisionCalibration 1",
                        "!SetOption SIM1 MeasurementMode ReflectanceSpot", "!Calibrate SIM1"};
const Texts checkingCalibration{"GetConnectionStatus SIM1", "!SetOption SIM1 MeasurementMode ReflectanceSpot",
                                "TriggerMeasurement SIM1"};
const Texts spot{"GetConnectionStatus SIM1", "!SetOption SIM1 MeasurementMode ReflectanceSpot", "GetButtonStatusD SIM1",
                 "!TriggerMeasurement SIM1", "!GetTriStimulus SIM1 0"};
const Texts scan{"GetConnectionStatus SIM1",
                 "!SetOption SIM1 RecognitionKey RecognitionPositionDark",
                 "!SetOption SIM1 PatchesPerLine 2",
                 "!SetOption SIM1 MeasurementMode ReflectanceScan",
                 "GetButtonStatusD SIM1",
                 "!TriggerMeasurement SIM1",
                 "!GetNumberOfAvailableSamples SIM1",
                 "!GetSpectrum SIM1 0",
                 "!GetSpectrum SIM1 1"};

const std::vector<Operation> operations{
    {"open", "1", "0", "0", opening},
    {"status", "1", "0", "0", readingStatus},
    {"begin", "1", "", "3", {"GetConnectionStatus SIM1"}},
    {"continue", "4", "3", "3", calibrating},
    {"isCalibrated", "1", "0", "0", checkingCalibration},
    {"spot", "1 1 1", "0 0 0", "1 0 0", spot},
    {"scan", "1 2 11", "0 0 00", "1 0 00", scan},
    {"close", "", "", "", closing},
};

/// The expected results of a run without a fault, followed by its messages.
Texts expectedWithoutFault() {
    Texts outcome;
    for (const Operation& operation : operations) {
        outcome.push_back(operation.success);
    }
    return outcome;
}

/// The same for a run in which a call of an operation fails.
Texts expectedWithFault(std::size_t index, std::size_t position, bool throws) {
    const Operation& failing = operations[index];
    const std::string& call = failing.calls[position];
    Texts outcome = expectedWithoutFault();
    if (!throws && !call.starts_with('!')) return outcome;
    const bool disconnects = call == "GetConnectionStatus SIM1" || failing.name == "open";
    const bool uncalibrates = !disconnects && failing.name == "continue";
    const std::size_t end = disconnects || uncalibrates ? operations.size() : index + 1;
    for (std::size_t i = index; i < end; ++i) {
        outcome[i] = disconnects ? operations[i].closed : operations[i].failure;
    }
    if (call == "!GetSpectrum SIM1 1") outcome[index] = "0 1 10";
    constexpr std::size_t openQueriesStatus = 5; // if this call throws, the status is empty
    if (failing.name == "open" && throws && position == openQueriesStatus) {
        outcome.emplace_back("M7 E1539: can't get xrite i1 Pro3 status");
    } else if (call == "!GetNumberOfAvailableSamples SIM1" && !throws) {
        outcome.emplace_back("M7 E1539: invalid number of samples");
    } else if (!throws && failing.name != "status" && failing.name != "isCalibrated") {
        outcome.emplace_back("M7 E1539: fault\nErrorNumber: -1");
    }
    if (uncalibrates)
        outcome.resize(outcome.size() + 2, "M7 E1539: The device SIM1 is not calibrated\nErrorNumber: 13");
    return outcome;
}

class FaultSweep : public ModuleTest {
protected:
    /// A whole run except for creating and destroying the object.
    Texts run() {
        listener.lines.clear();
        Texts outcome{fmt::format("{:d}", module.open(handle, "USB")),
                      std::to_string(module.getStatus(handle).aperture),
                      calibrate(SPM_STEP_BEGIN),
                      calibrate(SPM_STEP_CONTINUE),
                      fmt::format("{:d}", module.isCalibrated(handle)),
                      readSpot(),
                      scanSpectra(),
                      ""};
        module.close(handle);
        outcome.insert(outcome.end(), listener.lines.begin(), listener.lines.end());
        return outcome;
    }

private:
    std::string calibrate(uint32_t step) {
        SPM_CALIBRATION record{0, 0, 0, 0, step};
        module.calibrate(handle, &record);
        return std::to_string(record.step);
    }

    std::string readSpot() {
        SPM_LAB values{};
        int32_t count = 1;
        const bool answer = module.read(handle, &values, &count);
        return fmt::format("{:d} {} {:d}", answer, count, values.L > 0);
    }

    std::string scanSpectra() {
        std::array<std::array<SPM_REFLECTION, 36>, 2> reflections{};
        std::array<SPM_SPECTRUM, 2> spectra{{{36, reflections[0].data()}, {36, reflections[1].data()}}};
        int32_t count = 2;
        const bool answer = module.readSpectrum(handle, spectra.data(), &count);
        return fmt::format("{:d} {} {:d}{:d}", answer, count, reflections[0][35].value > 0,
                           reflections[1][35].value > 0);
    }
};

} // namespace

TEST_F(FaultSweep, ReportsEachFailureAndKeepsTheObjectUsable) {
    EXPECT_EQ(run(), expectedWithoutFault());
    const Texts callsWithoutFault = sdk.takeCalls();
    Texts calls;
    for (std::size_t i = 0; i < operations.size(); ++i) {
        for (std::size_t position = 0; position < operations[i].calls.size(); ++position) {
            const std::string& call = operations[i].calls[position];
            calls.push_back(call.substr(call.starts_with('!') ? 1 : 0));
            const std::string which = R"({"faults": [{"call": )" + std::to_string(calls.size());
            for (const std::string fault : {R"("result": -1, "text": "fault")", R"("exception": "simulated")",
                                            R"("exception": "simulated", "foreign": true)"}) {
                SCOPED_TRACE(operations[i].name + ": " + call);
                module.destroy(handle);
                handle = module.create();
                handle->AddListener(&listener);
                sdk.use(which + ", " + fault + "}]}");
                EXPECT_EQ(run(), expectedWithFault(i, position, fault.starts_with(R"("exception")")));
                EXPECT_EQ(run(), expectedWithoutFault());
            }
        }
    }
    EXPECT_EQ(callsWithoutFault, calls);
}

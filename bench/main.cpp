// Benchmarks the module's operations, each against a reference: the bare SDK calls, or a log line through spdlog. They
// run interleaved in one process, so that their ratio hardly depends on the machine. The SDK library is a null
// implementation: the time of a call is the module's own.

#include "bench/Table.h"
#include "common/Environment.h"
#include "i1pro3/I1PRO3_SDK.h"
#include "module/IScmSPM.h"

#include <array>
#include <cstdlib>
#include <fmt/format.h>
#include <fstream>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

namespace {

namespace fs = std::filesystem;

void require(bool isMet, const char* what) {
    if (!isMet) throw std::runtime_error(what);
}

void requireSuccess(std::int32_t result) {
    require(result == 0, "the SDK library failed");
}

// Reading a row of patches

constexpr std::int32_t patches = 24;

SPM_HANDLE instrument = nullptr;
I1PRO3_DeviceHandle device = nullptr;
std::array<SPM_LAB, patches> values;
std::array<std::array<SPM_REFLECTION, I1PRO3_NUMBER_OF_REFLECTIONS>, patches> reflections;
std::array<SPM_SPECTRUM, patches> spectra;

void prepareReadings() {
    instrument = SPM_create();
    require(SPM_open(instrument, "USB"), "SPM_open failed");
    I1PRO3_DeviceHandle* devices = nullptr;
    std::uint32_t count = 0;
    I1PRO3_GetDevices(&devices, &count);
    device = devices[0];
    for (std::size_t i = 0; i < spectra.size(); ++i) {
        spectra[i] = {I1PRO3_NUMBER_OF_REFLECTIONS, reflections[i].data()};
    }
}

void readValues() {
    std::int32_t count = patches;
    require(SPM_read(instrument, values.data(), &count) && count == patches, "SPM_read failed");
}

void readSpectra() {
    std::int32_t count = patches;
    require(SPM_readSpectrum(instrument, spectra.data(), &count) && count == patches, "SPM_readSpectrum failed");
}

void callScan() {
    I1PRO3_GetConnectionStatus(device);
    requireSuccess(I1PRO3_SetOption(device, "RecognitionKey", "RecognitionPositionDark"));
    requireSuccess(I1PRO3_SetOption(device, "PatchesPerLine", "24"));
    requireSuccess(I1PRO3_SetOption(device, "MeasurementMode", "ReflectanceScan"));
    require(I1PRO3_GetButtonStatusD(device) != I1PRO3_BUTTON_NOT_PRESSED, "the button is not pressed");
    requireSuccess(I1PRO3_TriggerMeasurement(device));
    require(I1PRO3_GetNumberOfAvailableSamples(device) == patches, "patches are missing");
}

void callForValues() {
    callScan();
    std::array<float, 3> lab{};
    for (std::int32_t i = 0; i < patches; ++i) {
        requireSuccess(I1PRO3_GetTriStimulus(device, lab.data(), i));
        values[static_cast<std::size_t>(i)] = {lab[0], lab[1], lab[2]};
    }
}

void callForSpectra() {
    callScan();
    std::array<float, I1PRO3_NUMBER_OF_REFLECTIONS> factors{};
    for (std::int32_t i = 0; i < patches; ++i) {
        requireSuccess(I1PRO3_GetSpectrum(device, factors.data(), i));
        SPM_REFLECTION* const points = spectra[static_cast<std::size_t>(i)].reflections;
        for (std::int32_t j = 0; j < I1PRO3_NUMBER_OF_REFLECTIONS; ++j) {
            points[j] = {I1PRO3_FIRST_WAVELENGTH + I1PRO3_WAVELENGTH_STEP * j,
                         factors[static_cast<std::size_t>(j)] * 100};
        }
    }
}

// Logging a line

/// The module logs only while a listener is attached.
class Listener : public ICAPLoggingListener {
    void HandleMessage(ICAPLoggingSource* /*source*/, const ICAPLoggingMessage& /*message*/) override {}
};

Listener listener;
SPM_HANDLE logging = nullptr;
std::shared_ptr<spdlog::logger> logger;

/// Closing an object that was never opened only logs a line.
void logLine() {
    SPM_close(logging);
}

void logLineWithSpdlog() {
    logger->debug("close");
}

/// Puts both logs into the module's folder, so that they are on the same file system.
void prepareLogLines(const fs::path& folder) {
    logging = SPM_create();
    logging->AddListener(&listener);
    logger = spdlog::basic_logger_st("55D0C8A0", folder / "spdlog.log");
    logger->set_pattern("%Y-%m-%d %H:%M:%S (UTC%z) [%P:%t:%n] M7 D: %v");
    logger->set_level(spdlog::level::debug);
    logger->flush_on(spdlog::level::debug);
}

// Other operations

void createAndDestroy() {
    SPM_destroy(SPM_create());
}

void getVersion() {
    require(SPM_getVersion(nullptr) != 0, "SPM_getVersion failed");
}

void useSettings(const fs::path& settings, int isLogging) {
    std::ofstream(settings) << "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM]\n\"Logging\"=dword:0000000"
                            << isLogging << '\n';
}

const std::vector<Row> rows{
    {"SPM_read, 24 patches", readValues, "its SDK calls", callForValues, 1.15},
    {"SPM_readSpectrum, 24 patches", readSpectra, "its SDK calls and conversion", callForSpectra, 1.15},
    {"a log line", logLine, "spdlog's basic file sink", logLineWithSpdlog, 2},
    {"SPM_create and SPM_destroy", createAndDestroy},
    {"SPM_getVersion", getVersion},
};

void run(const fs::path& folder) {
    const fs::path settings = folder / "bench.reg";
    setenv("SPM_REGISTRY", settings.c_str(), 1);
    useSettings(settings, 1);
    prepareLogLines(folder);
    useSettings(settings, 0);
    prepareReadings();
    Table table(rows);
    benchmark::RunSpecifiedBenchmarks(&table);
    SPM_destroy(instrument);
    SPM_destroy(logging);
    for (const char* name : {"bench.reg", "spm_i1pro3.log", "spdlog.log"}) {
        fs::remove(folder / name);
    }
}

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    try {
        run(common::programFolder());
        return 0;
    } catch (const std::exception& error) {
        fmt::print(stderr, "bench: {}\n", error.what());
        return 1;
    }
}

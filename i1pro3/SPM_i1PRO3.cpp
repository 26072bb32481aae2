#include "i1pro3/SPM_i1PRO3.h"

#include "i1pro3/CheckSdkResult.h"
#include "module/Device.h"
#include "platform/ForeignCall.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

constexpr const char* typeName = "xrite i1 Pro3";

constexpr std::uint32_t apertureValue = 1;
constexpr std::uint32_t uvIncluded = 1;
constexpr std::uint32_t uvExcluded = 2;
constexpr std::uint32_t whiteReference = 1;
constexpr std::uint32_t spotMode = 1;
constexpr std::uint32_t scanMode = 2;

constexpr float percent = 100.0F;

/// Runs an operation for the destructor, which must not throw.
template <class Operation>
void ignoringExceptions(Operation operation) noexcept {
    try {
        operation();
    } catch (...) { // NOLINT(bugprone-empty-catch)
    }
}

} // namespace

std::unique_ptr<SPM_BASE> createDevice() {
    return std::make_unique<SPM_i1PRO3>();
}

SPM_i1PRO3::SPM_i1PRO3() : SPM_BASE(typeName, false) {
    apertures = {{"4.5 mm", apertureValue}};
    illuminations = {{"UV Included", uvIncluded}, {"UV Excluded", uvExcluded}};
    optionMasks.modeMask = scanMode | spotMode;
    optionMasks.referenceMask = whiteReference;
    references = {{"White Reference", whiteReference}};
    modes = {{scanMode, 10.0F, 20.0F, 22, 10}, {spotMode, 16.0F, 16.0F, 10, 10}};
    devices = {"USB"};
}

SPM_i1PRO3::~SPM_i1PRO3() {
    ignoringExceptions([&] { Log(CAPLevel::debug, spmModuleNumber, "close"); });
    deviceState = Closed;
    currentOptions = {};
    ignoringExceptions([&] { attempt([&] { resetLibrary(); }); });
}

template <class Operation>
bool SPM_i1PRO3::attempt(Operation operation) {
    try {
        operation();
        return true;
    } catch (const CAPException& exception) {
        LogException(exception);
    } catch (...) { // NOLINT(bugprone-empty-catch): reported by the result; only a CAPException has a log message
    }
    return false;
}

void SPM_i1PRO3::setOption(const char* key, const char* value) {
    checkSdkResult(callForeign(I1PRO3_SetOption, deviceHandle, key, value));
}

void SPM_i1PRO3::resetLibrary() {
    checkSdkResult(callForeign(I1PRO3_SetGlobalOption, "Reset", "All"));
}

// Connection

bool SPM_i1PRO3::open(const char* device) {
    close();
    Log(CAPLevel::debug, spmModuleNumber, "open[%s]", device);
    if (!attempt([&] { connect(); })) close();
    Log(CAPLevel::debug, spmModuleNumber, "open[%s] %s", device, isOpened() ? "done" : "failed");
    return isOpened();
}

void SPM_i1PRO3::connect() {
    std::uint32_t count = 0;
    I1PRO3_DeviceHandle* handles = nullptr;
    checkSdkResult(callForeign(I1PRO3_GetDevices, &handles, &count));
    // A missing instrument is not logged, therefore not an SPMException.
    if (count == 0 || handles == nullptr) throw std::runtime_error("No device connected");
    deviceHandle = handles[0];
    checkSdkResult(callForeign(I1PRO3_OpenDevice, deviceHandle));
    setOption("Colorimetric.Illumination", "D65");
    setOption("Colorimetric.Observer", "TenDegree");
    setOption("ColorSpaceDescription.Type", "CIELab");
    deviceState = Open;
    SPM_OPTIONS_EX status = getStatus();
    if (!validate(status)) throw SPMException(spmErrorNumber, "can't get xrite i1 Pro3 status");
    currentOptions = status;
}

void SPM_i1PRO3::close() {
    Log(CAPLevel::debug, spmModuleNumber, "close");
    deviceState = Closed;
    currentOptions = {};
    if (deviceHandle == nullptr) return;
    callForeign(I1PRO3_GetConnectionStatus, deviceHandle);
    checkSdkResult(callForeign(I1PRO3_CloseDevice, deviceHandle));
    resetLibrary();
}

/// Only an exception counts as a lost connection: the values of the connection status are not documented.
bool SPM_i1PRO3::isOpened() {
    if (deviceState == Closed) return false;
    try {
        callForeign(I1PRO3_GetConnectionStatus, deviceHandle);
        return true;
    } catch (...) {
        close();
        return false;
    }
}

SPM_OPTIONS_EX SPM_i1PRO3::getStatus() {
    SPM_OPTIONS_EX status;
    if (isOpened()) {
        status.aperture = apertureValue;
        SdkTextBuffer illuminationNames; // not evaluated: the status is always "UV Included"
        checkSdkResult(callForeign(I1PRO3_GetOption, deviceHandle, "AvailableIlluminationsKey",
                                   illuminationNames.data(), illuminationNames.size()));
        status.illumination = uvIncluded;
    }
    return resolved(status);
}

// Calibration

SPM_CALIBRATION_EX SPM_i1PRO3::calibrate(const SPM_CALIBRATION_EX& request) {
    SPM_CALIBRATION_EX reply;
    bool wasOpened = false;
    attempt([&] {
        wasOpened = isOpened();
        if (!wasOpened) return;
        switch (request.step) {
        case SPM_STEP_BEGIN:
            deviceState = CalibrationPending;
            reply.step = SPM_STEP_CONTINUE;
            break;
        case SPM_STEP_CONTINUE:
            reply.step = continueCalibration();
            break;
        case SPM_STEP_DONE:
            reply.step = SPM_STEP_DONE;
            break;
        default:
            break;
        }
    });
    if (reply.step == SPM_STEP_CONTINUE) reply.reference = whiteReference;
    if (wasOpened && reply.step == SPM_STEP_NOTHING) deviceState = Open;
    return resolved(reply);
}

/// Calibrates if the button was pressed, and returns the step to reply with.
std::uint32_t SPM_i1PRO3::continueCalibration() {
    if (deviceState == CalibrationPending &&
        callForeign(I1PRO3_GetButtonStatusD, deviceHandle) != I1PRO3_BUTTON_NOT_PRESSED) {
        setOption("PrecisionCalibration", "1");
        setOption("MeasurementMode", "ReflectanceSpot");
        checkSdkResult(callForeign(I1PRO3_Calibrate, deviceHandle));
        deviceState = Calibrated;
    }
    switch (deviceState) {
    case CalibrationPending:
        return SPM_STEP_CONTINUE;
    case Calibrated:
        return SPM_STEP_DONE;
    default:
        return SPM_STEP_NOTHING;
    }
}

bool SPM_i1PRO3::isCalibrated() {
    if (!isOpened()) return false;
    setOption("MeasurementMode", "ReflectanceSpot");
    return callForeign(I1PRO3_TriggerMeasurement, deviceHandle) != I1PRO3_NOT_CALIBRATED;
}

// Measurement

std::int32_t SPM_i1PRO3::getNumberOfReflections() const {
    return I1PRO3_NUMBER_OF_REFLECTIONS;
}

bool SPM_i1PRO3::read(SPM_LAB* values, std::int32_t* count) {
    const std::int32_t patches = std::exchange(*count, 0);
    return attempt([&] {
        if (isOpened() && patches >= 1) measure<3>(patches, values, count);
    });
}

bool SPM_i1PRO3::readSpectrum(SPM_SPECTRUM* spectra, std::int32_t* count) {
    const std::int32_t patches = std::exchange(*count, 0);
    return attempt([&] {
        if (!isOpened() || patches < 1) return;
        if (spectra == nullptr || spectra->numberOfReflections == getNumberOfReflections())
            measure<I1PRO3_NUMBER_OF_REFLECTIONS>(patches, spectra, count);
    });
}

/// Measures if the button was pressed. Increments `count` with each record, so that it is correct after a failure, too.
/// @tparam size  the number of values that the vendor's library gives for a sample
template <std::size_t size, class Record>
void SPM_i1PRO3::measure(std::int32_t patches, Record* records, std::int32_t* count) {
    setMeasurementMode(patches);
    if (callForeign(I1PRO3_GetButtonStatusD, deviceHandle) == I1PRO3_BUTTON_NOT_PRESSED) return;
    if (records == nullptr) throw SPMException(spmErrorNumber, "no array for the samples");
    checkSdkResult(callForeign(I1PRO3_TriggerMeasurement, deviceHandle));
    const std::int32_t samples = numberOfSamples(patches);
    std::array<float, size> buffer{};
    for (std::int32_t sample = 0; sample < samples; ++sample) {
        readSample(sample, buffer.data(), records[sample]);
        *count = sample + 1;
    }
}

/// One patch is measured as a spot, several as a scan.
void SPM_i1PRO3::setMeasurementMode(std::int32_t patches) {
    if (patches == 1) {
        setOption("MeasurementMode", "ReflectanceSpot");
        return;
    }
    setOption("RecognitionKey", "RecognitionPositionDark");
    setOption("PatchesPerLine", std::to_string(patches).c_str()); // short enough to need no allocation
    setOption("MeasurementMode", "ReflectanceScan");
}

std::int32_t SPM_i1PRO3::numberOfSamples(std::int32_t patches) {
    if (patches == 1) return 1;
    const std::int32_t samples = callForeign(I1PRO3_GetNumberOfAvailableSamples, deviceHandle);
    if (samples < 0 || samples > patches) throw SPMException(spmErrorNumber, "invalid number of samples");
    return samples;
}

void SPM_i1PRO3::readSample(std::int32_t sample, float* buffer, SPM_LAB& values) {
    checkSdkResult(callForeign(I1PRO3_GetTriStimulus, deviceHandle, buffer, sample));
    values = {buffer[0], buffer[1], buffer[2]};
}

void SPM_i1PRO3::readSample(std::int32_t sample, float* buffer, const SPM_SPECTRUM& spectrum) {
    checkSdkResult(callForeign(I1PRO3_GetSpectrum, deviceHandle, buffer, sample));
    const std::int32_t entries = std::min<std::int32_t>(spectrum.numberOfReflections, I1PRO3_NUMBER_OF_REFLECTIONS);
    if (entries > 0 && spectrum.reflections == nullptr) throw SPMException(spmErrorNumber, "no array for a spectrum");
    for (std::int32_t j = 0; j < entries; ++j) {
        spectrum.reflections[j] = {I1PRO3_FIRST_WAVELENGTH + I1PRO3_WAVELENGTH_STEP * j, buffer[j] * percent};
    }
}

// The module's boundary. Each exported function runs one operation inside a guard, which catches every exception and
// returns the zero value of the function's result type: false, 0, null or a zeroed record. SPM_destroy needs no guard,
// since destructors don't throw.

#include "cap/CAPFileVersionInfo.h"
#include "module/CopyText.h"
#include "module/Device.h"
#include "module/ModuleHandle.h"
#include "module/SPM.h"

namespace {

template <class Operation>
auto guarded(Operation operation) noexcept -> decltype(operation()) {
    try {
        return operation();
    } catch (...) {
        return decltype(operation())();
    }
}

/// Runs an operation on a handle's object. Returns the zero value if the handle is null.
template <class Operation>
auto withModule(SPM_HANDLE handle, Operation operation) noexcept {
    using Result = decltype(operation(static_cast<SPM_BASE&>(*handle)));
    return guarded([&] { return handle != nullptr ? operation(static_cast<SPM_BASE&>(*handle)) : Result(); });
}

/// Runs a read on a handle's object. The count is needed, and 0 also if the handle is null.
template <class Record>
bool runRead(SPM_HANDLE handle, bool (IScmSPM::*read)(Record*, int32_t*), Record* records, int32_t* count) noexcept {
    if (count == nullptr) return false;
    if (handle == nullptr) *count = 0;
    return withModule(handle, [&](SPM_BASE& module) { return (module.*read)(records, count); });
}

template <class Read>
auto fromVersionInfo(Read read) noexcept {
    return guarded([&] {
        CAPFileVersionInfo info;
        info.loadFromModule(moduleHandle());
        return read(info);
    });
}

} // namespace

uint32_t SPM_getVersion(SPM_VERSION* version) {
    return fromVersionInfo([&](const CAPFileVersionInfo& info) -> uint32_t {
        if (version != nullptr) {
            version->version = info.getFileVersionPart(0);
            copyText(info.getComments(), version->type);
        }
        return info.getFileVersionPart(0);
    });
}

uint32_t SPM_getMinorVersion() {
    return fromVersionInfo([](const CAPFileVersionInfo& info) -> uint32_t { return info.getFileVersionPart(1); });
}

void SPM_getType(SPM_TEXT* type) {
    fromVersionInfo([&](const CAPFileVersionInfo& info) {
        if (type != nullptr) copyText(info.getComments(), *type);
    });
}

SPM_HANDLE SPM_create() {
    return guarded([]() -> SPM_HANDLE { return createDevice().release(); });
}

void SPM_destroy(SPM_HANDLE handle) {
    delete handle;
}

SPM_OPTION_MASKS SPM_getOptionMasks(SPM_HANDLE handle) {
    return withModule(handle, [](SPM_BASE& module) { return module.getOptionMasks(); });
}

void SPM_setOptions(SPM_HANDLE handle, const SPM_OPTIONS* options) {
    withModule(handle, [&](SPM_BASE& module) {
        if (options != nullptr) module.setOptions(SPM_OPTIONS_EX(*options));
    });
}

bool SPM_open(SPM_HANDLE handle, const char* device) {
    return withModule(handle, [&](SPM_BASE& module) { return module.open(device != nullptr ? device : ""); });
}

void SPM_close(SPM_HANDLE handle) {
    withModule(handle, [](SPM_BASE& module) { module.close(); });
}

bool SPM_isOpened(SPM_HANDLE handle) {
    return withModule(handle, [](SPM_BASE& module) { return module.isOpened(); });
}

SPM_STATUS SPM_getStatus(SPM_HANDLE handle) {
    return withModule(handle, [](SPM_BASE& module) {
        const SPM_OPTIONS_EX status = module.getStatus();
        return SPM_STATUS{status.aperture, status.illumination, status.auxiliary};
    });
}

void SPM_calibrate(SPM_HANDLE handle, SPM_CALIBRATION* calibration) {
    withModule(handle, [&](SPM_BASE& module) {
        if (calibration == nullptr) return;
        const SPM_CALIBRATION_EX answer = module.calibrate(SPM_CALIBRATION_EX(*calibration));
        *calibration = static_cast<const SPM_CALIBRATION&>(answer);
    });
}

bool SPM_isCalibrated(SPM_HANDLE handle) {
    return withModule(handle, [](SPM_BASE& module) { return module.isCalibrated(); });
}

int32_t SPM_getNumberOfReflections(SPM_HANDLE handle) {
    return withModule(handle, [](SPM_BASE& module) { return module.getNumberOfReflections(); });
}

bool SPM_read(SPM_HANDLE handle, SPM_LAB* values, int32_t* count) {
    return runRead(handle, &IScmSPM::read, values, count);
}

bool SPM_readSpectrum(SPM_HANDLE handle, SPM_SPECTRUM* spectra, int32_t* count) {
    return runRead(handle, &IScmSPM::readSpectrum, spectra, count);
}

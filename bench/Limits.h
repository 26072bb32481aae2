#pragma once

// The least that could be done in the module's place.

#include "host/Module.h"
#include "i1pro3/I1PRO3_SDK.h"

#include <filesystem>
#include <string>

namespace bench {

/// The functions of the SDK library that a module was loaded with.
struct Sdk {
    explicit Sdk(const host::Module& module);

    decltype(&I1PRO3_GetDevices) getDevices;
    decltype(&I1PRO3_GetConnectionStatus) getConnectionStatus;
    decltype(&I1PRO3_SetOption) setOption;
    decltype(&I1PRO3_SetGlobalOption) setGlobalOption;
    decltype(&I1PRO3_GetButtonStatusD) getButtonStatus;
    decltype(&I1PRO3_TriggerMeasurement) triggerMeasurement;
    decltype(&I1PRO3_GetNumberOfAvailableSamples) getNumberOfAvailableSamples;
    decltype(&I1PRO3_GetTriStimulus) getTriStimulus;
    decltype(&I1PRO3_GetSpectrum) getSpectrum;
    I1PRO3_DeviceHandle device;

    /// The calls of SPM_read.
    void read(std::int32_t patches) const;
    /// The calls of SPM_readSpectrum.
    void readSpectrum(std::int32_t patches) const;
    /// The same calls, and for each patch the 36 points that a host gets.
    void readSpectrum(std::int32_t patches, SPM_SPECTRUM* spectra) const;

private:
    /// @return whether the button is pressed
    bool begin(std::int32_t patches) const;
};

/// A file open for appending, without a stream.
class RawFile {
public:
    explicit RawFile(const std::filesystem::path& path);
    RawFile(const RawFile&) = delete;
    RawFile& operator=(const RawFile&) = delete;
    ~RawFile();

    void write(const std::string& line) const;

private:
    int descriptor;
};

/// The system calls of SPM_create and SPM_destroy, as strace shows them: each settings key and value is a look at the
/// file. With a log, its two lines as well.
void createAndDestroy(const std::filesystem::path& settings, const std::filesystem::path& log);
void createAndDestroy(const std::filesystem::path& settings);

/// The system calls of SPM_getVersion: the file is looked at for its resource's size, and for its bytes.
void getVersion(const std::filesystem::path& module);

} // namespace bench

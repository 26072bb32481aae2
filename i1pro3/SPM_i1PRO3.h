#pragma once

#include "i1pro3/I1PRO3_SDK.h"
#include "module/SPM_BASE.h"

/// Drives the i1Pro 3 through its vendor's library. All calls of that library run on the host's thread, without retries
/// or waits.
class SPM_i1PRO3 : public SPM_BASE {
public:
    /// Fills the capability lists. Does not call the vendor's library.
    SPM_i1PRO3();
    SPM_i1PRO3(const SPM_i1PRO3&) = delete;
    SPM_i1PRO3& operator=(const SPM_i1PRO3&) = delete;
    /// Resets the vendor's library; a failure is only logged. Does not close the instrument.
    ~SPM_i1PRO3() override;

    bool open(const char* device) override;
    void close() override;
    bool isOpened() override;
    SPM_OPTIONS_EX getStatus() override;
    bool isCalibrated() override;
    SPM_CALIBRATION_EX calibrate(const SPM_CALIBRATION_EX& request) override;
    std::int32_t getNumberOfReflections() const override;
    bool readSpectrum(SPM_SPECTRUM* spectra, std::int32_t* count) override;
    bool read(SPM_LAB* values, std::int32_t* count) override;

private:
    enum State : std::uint32_t { Closed, Open, CalibrationPending, Calibrated };

    /// Runs an operation and catches every exception; a CAPException is logged. Logging itself may throw.
    /// @return whether the operation completed
    template <class Operation>
    bool attempt(Operation operation);

    void setOption(const char* key, const char* value);
    void resetLibrary();
    void connect();
    std::uint32_t continueCalibration();

    template <std::size_t size, class Record>
    void measure(std::int32_t patches, Record* records, std::int32_t* count);
    void setMeasurementMode(std::int32_t patches);
    std::int32_t numberOfSamples(std::int32_t patches);
    void readSample(std::int32_t sample, float* buffer, SPM_LAB& values);
    void readSample(std::int32_t sample, float* buffer, const SPM_SPECTRUM& spectrum);

    State deviceState = Closed;
    I1PRO3_DeviceHandle deviceHandle = nullptr;
};

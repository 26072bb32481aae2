#pragma once

#if __cplusplus < 201703L
#error "IScmSPM.h needs C++17; hosts in other languages use SPM_listener.h"
#endif

#include "cap/CAPLoggingHandler.h"
#include "SPM.h" // beside this header, also where it is installed

#include <cstddef>

#ifdef _LIBCPP_VERSION
#error "IScmSPM.h needs the module's standard library, libstdc++; hosts with libc++ use SPM_listener.h"
#endif

/// A selection of options, with the index of each selected entry in its list, or -1 for none.
struct SPM_OPTIONS_EX : SPM_OPTIONS {
    std::int32_t apertureIndex = -1;
    std::int32_t auxiliaryIndex = -1;
    std::int32_t illuminationIndex = -1;

    /// Selects nothing.
    SPM_OPTIONS_EX() : SPM_OPTIONS{} {}
    /// Selects entries by their values.
    explicit SPM_OPTIONS_EX(const SPM_OPTIONS& options) : SPM_OPTIONS(options) {}
};

/// A calibration request or reply, with the index of each selected entry in its list, or -1 for none.
struct SPM_CALIBRATION_EX : SPM_CALIBRATION {
    std::int32_t apertureIndex = -1;
    std::int32_t auxiliaryIndex = -1;
    std::int32_t illuminationIndex = -1;
    std::int32_t referenceIndex = -1;

    /// The reply "nothing was calibrated".
    SPM_CALIBRATION_EX() : SPM_CALIBRATION{} { step = SPM_STEP_NOTHING; }
    /// Selects entries by their values.
    explicit SPM_CALIBRATION_EX(const SPM_CALIBRATION& calibration) : SPM_CALIBRATION(calibration) {}
};

/// A measuring mode of the device: the mode's bit and four constants for the host. The module itself doesn't use the
/// constants, and their meaning is not documented.
struct SPM_MODE {
    std::uint32_t mode;   ///< The mode's bit in SPM_OPTION_MASKS::modeMask; for the i1Pro 3: 1 spot, 2 scan.
    float first;          ///< For the i1Pro 3: spot 16, scan 10.
    float second;         ///< For the i1Pro 3: spot 16, scan 20.
    std::uint32_t third;  ///< For the i1Pro 3: spot 10, scan 22.
    std::uint32_t fourth; ///< For the i1Pro 3: spot 10, scan 10.
};

/// A spectrophotometer. An SPM_HANDLE is a pointer to this interface.
///
/// It is also a logging hub, to which a host can attach a listener: `handle->AddListener(&listener)`.
///
/// The declaration order defines the virtual table, which compiled hosts rely on: append operations, never insert or
/// reorder them. SPM.h describes the operations that it exports.
/// Unlike the exported functions, the operations don't check arguments for null unless noted, and those that use the
/// instrument may throw: a CAPException, or another std::exception if the vendor's library throws. Returned texts are
/// valid for the object's lifetime.
struct IScmSPM : CAPLoggingHandler {
    IScmSPM() = default;
    IScmSPM(const IScmSPM&) = delete;
    IScmSPM& operator=(const IScmSPM&) = delete;
    ~IScmSPM() override;

    // The virtual table begins with the destructor and CAPLoggingHandler's HandleMessage, Dispatch and LogMessage.

    /// The model name, "xrite i1 Pro3".
    virtual const char* getName() const = 0;
    /// A flag that the device class sets; false for the i1Pro 3. Its meaning is not documented.
    virtual bool getDeviceFlag() const = 0;

    /// Whether the device supports all of these modes (bits of SPM_MODE::mode).
    virtual bool isModeSupported(std::uint32_t bits) const = 0;
    /// Whether the device supports all of these calibration references (bits of their values).
    virtual bool isReferenceSupported(std::uint32_t bits) const = 0;

    // The options, references and modes of the device: how many there are, their names, and whether the host may
    // choose. Names are "" if the index is out of range.

    virtual std::size_t getNumberOfApertures() const = 0;
    virtual const char* getAperture(std::int32_t index) const = 0; ///< Such as "4.5 mm".
    virtual bool hasApertureChoice() const = 0;

    virtual std::size_t getNumberOfAuxiliaries() const = 0;
    virtual const char* getAuxiliary(std::int32_t index) const = 0;
    virtual bool hasAuxiliaryChoice() const = 0;

    virtual std::size_t getNumberOfIlluminations() const = 0;
    virtual const char* getIllumination(std::int32_t index) const = 0; ///< Such as "UV Included".
    virtual bool hasIlluminationChoice() const = 0;

    virtual std::size_t getNumberOfReferences() const = 0;
    virtual const char* getReference(std::int32_t index) const = 0; ///< Such as "White Reference".

    virtual std::size_t getNumberOfModes() const = 0;
    /// Returns a mode; the first one if the index is out of range, null if the device has no modes.
    virtual const SPM_MODE* getMode(std::int32_t index) const = 0;

    virtual std::size_t getNumberOfDevices() const = 0; ///< Of device connections, not of instruments.
    /// Returns the name of a device connection, to pass to open: the one at the index, or the first if the index is
    /// past the end. A negative index stands for the connection in the setting "Device" (a REG_SZ in the
    /// model's key), or the first if the setting names none of them. Null if the device has no connections.
    virtual const char* getDevice(std::int32_t index) const = 0;

    /// See SPM_open.
    /// @throws CAPException  if an earlier connection can't be closed, or closing after a failure fails
    virtual bool open(const char* device) = 0;
    /// See SPM_close.
    /// @throws CAPException  if a call of the vendor's library fails
    virtual void close() = 0;
    virtual bool isOpened() = 0;

    /// Selects options by their exact names. A null or unknown name leaves the option unchanged.
    /// @return whether every list that has entries has a selected one
    virtual bool setOptionsByName(const char* aperture, const char* auxiliary, const char* illumination) = 0;

    /// See SPM_getStatus.
    /// @throws CAPException  if the instrument can't be queried
    virtual SPM_OPTIONS_EX getStatus() = 0;
    /// See SPM_isCalibrated.
    /// @throws CAPException  if the measuring mode can't be set
    virtual bool isCalibrated() = 0;
    virtual SPM_CALIBRATION_EX calibrate(const SPM_CALIBRATION_EX& request) = 0;
    virtual std::int32_t getNumberOfReflections() const = 0;
    virtual bool readSpectrum(SPM_SPECTRUM* spectra, std::int32_t* count) = 0;
    virtual bool read(SPM_LAB* values, std::int32_t* count) = 0;
};

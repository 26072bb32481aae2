#pragma once

#include "cap/CAPLoggingHandler.h"
#include "SPM.h" // beside this header, also where it is installed

#include <cstddef>

/// A selection of options with the positions of the chosen entries in their lists, -1 for none.
struct SPM_OPTIONS_EX : SPM_OPTIONS {
    std::int32_t apertureIndex = -1;     ///< in the list of apertures
    std::int32_t auxiliaryIndex = -1;    ///< in the list of auxiliary options
    std::int32_t illuminationIndex = -1; ///< in the list of illuminations

    /// Nothing is selected.
    SPM_OPTIONS_EX() : SPM_OPTIONS{} {}
    /// A selection by values.
    explicit SPM_OPTIONS_EX(const SPM_OPTIONS& options) : SPM_OPTIONS(options) {}
};

/// A calibration request or answer with the positions of the chosen entries in their lists, -1 for none.
struct SPM_CALIBRATION_EX : SPM_CALIBRATION {
    std::int32_t apertureIndex = -1;     ///< in the list of apertures
    std::int32_t auxiliaryIndex = -1;    ///< in the list of auxiliary options
    std::int32_t illuminationIndex = -1; ///< in the list of illuminations
    std::int32_t referenceIndex = -1;    ///< in the list of references

    /// Nothing was calibrated.
    SPM_CALIBRATION_EX() : SPM_CALIBRATION{} { step = SPM_STEP_NOTHING; }
    /// A request or answer by values.
    explicit SPM_CALIBRATION_EX(const SPM_CALIBRATION& calibration) : SPM_CALIBRATION(calibration) {}
};

/// A measuring mode of the device: the mode's bit and four numbers for the host. The module hands them out as they are
/// and reads none of them; what they measure is not documented.
struct SPM_MODE {
    std::uint32_t mode;   ///< the mode's bit, of SPM_OPTION_MASKS::modeMask: 2 a scan, 1 a spot of the i1Pro 3
    float first;          ///< 10 for a scan, 16 for a spot of the i1Pro 3
    float second;         ///< 20 and 16
    std::uint32_t third;  ///< 22 and 10
    std::uint32_t fourth; ///< 10 and 10
};

/// A spectrophotometer: what a handle points to.
///
/// Being a logging hub as well, it takes a host's listener: `handle->AddListener(&listener)`.
///
/// The order of the operations is the order of the virtual table, which hosts bind to: append, never insert. The
/// operations with a function in SPM.h are described there. Texts that are returned live as long as the object.
struct IScmSPM : CAPLoggingHandler {
    IScmSPM() = default;
    IScmSPM(const IScmSPM&) = delete;
    IScmSPM& operator=(const IScmSPM&) = delete;
    ~IScmSPM() override;

    // The operations of CAPLoggingHandler stand here: HandleMessage, Dispatch, LogMessage.

    /// The model name, "xrite i1 Pro3".
    virtual const char* getName() const = 0;
    /// A flag of the device class: false for the i1Pro 3.
    virtual bool getDeviceFlag() const = 0;

    /// Whether the device supports all of these modes (bits of SPM_MODE::mode).
    virtual bool isModeSupported(std::uint32_t bits) const = 0;
    /// Whether the device supports all of these calibration references (bits of their values).
    virtual bool isReferenceSupported(std::uint32_t bits) const = 0;

    // The capability lists. An index that a list does not have names "".

    virtual std::size_t getNumberOfApertures() const = 0;          ///< how many there are
    virtual const char* getAperture(std::int32_t index) const = 0; ///< the name, "4.5 mm"
    virtual bool hasApertureChoice() const = 0;                    ///< whether the host may choose

    virtual std::size_t getNumberOfAuxiliaries() const = 0;         ///< how many there are
    virtual const char* getAuxiliary(std::int32_t index) const = 0; ///< the name
    virtual bool hasAuxiliaryChoice() const = 0;                    ///< whether the host may choose

    virtual std::size_t getNumberOfIlluminations() const = 0;          ///< how many there are
    virtual const char* getIllumination(std::int32_t index) const = 0; ///< the name, such as "UV Included"
    virtual bool hasIlluminationChoice() const = 0;                    ///< whether the host may choose

    virtual std::size_t getNumberOfReferences() const = 0;          ///< how many there are
    virtual const char* getReference(std::int32_t index) const = 0; ///< the name, "White Reference"

    virtual std::size_t getNumberOfModes() const = 0; ///< how many there are
    /// The mode at an index, or the first for an index that the list does not have; null when there are none.
    virtual const SPM_MODE* getMode(std::int32_t index) const = 0;

    virtual std::size_t getNumberOfDevices() const = 0; ///< how many connections there are
    /// A device connection to open: the one at an index, or the first for an index past the end. A negative index asks
    /// for the one that the setting "Device" names, or the first where it names none. Null when there are none.
    virtual const char* getDevice(std::int32_t index) const = 0;

    /// @throws CAPException  when closing an earlier connection fails, or closing after a failure
    virtual bool open(const char* device) = 0;
    /// @throws CAPException  when a call of the vendor's library fails
    virtual void close() = 0;
    virtual bool isOpened() = 0; ///< as SPM_isOpened

    /// Selects options by their names, each as it stands in its list; null leaves an option as it is.
    /// @return whether each list that has entries has a selected one
    virtual bool setOptionsByName(const char* aperture, const char* auxiliary, const char* illumination) = 0;

    /// @throws CAPException  when the instrument can't be asked
    virtual SPM_OPTIONS_EX getStatus() = 0;
    /// @throws CAPException  when the measuring mode can't be set
    virtual bool isCalibrated() = 0;
    virtual SPM_CALIBRATION_EX calibrate(const SPM_CALIBRATION_EX& request) = 0; ///< as SPM_calibrate
    virtual std::int32_t getNumberOfReflections() const = 0;                     ///< as its function
    virtual bool readSpectrum(SPM_SPECTRUM* spectra, std::int32_t* count) = 0;   ///< as SPM_readSpectrum
    virtual bool read(SPM_LAB* values, std::int32_t* count) = 0;                 ///< as SPM_read
};

#pragma once

#include "cap/CAPLoggingFile.h"
#include "module/IScmSPM.h"
#include "module/SPMException.h"
#include "module/SPMRegistry.h"

#include <vector>

/// What all device modules have in common: the capability lists, the options and their selection, the settings, and
/// the way of log messages to the host's listener and to the log file.
///
/// A device class fills the lists and masks in its constructor; they never change afterwards.
class SPM_BASE : public IScmSPM {
public:
    SPM_BASE(const SPM_BASE&) = delete;
    SPM_BASE& operator=(const SPM_BASE&) = delete;
    ~SPM_BASE() override;

    /// Sends levels 0 to 2 to the listener, then every level to the log file.
    void Dispatch(ICAPLoggingSource* source, const ICAPLoggingMessage& message) override;

    const char* getName() const override;
    bool getDeviceFlag() const override;
    bool isModeSupported(std::uint32_t bits) const override;
    bool isReferenceSupported(std::uint32_t bits) const override;
    std::size_t getNumberOfApertures() const override;
    const char* getAperture(std::int32_t index) const override;
    bool hasApertureChoice() const override;
    std::size_t getNumberOfAuxiliaries() const override;
    const char* getAuxiliary(std::int32_t index) const override;
    bool hasAuxiliaryChoice() const override;
    std::size_t getNumberOfIlluminations() const override;
    const char* getIllumination(std::int32_t index) const override;
    bool hasIlluminationChoice() const override;
    std::size_t getNumberOfReferences() const override;
    const char* getReference(std::int32_t index) const override;
    std::size_t getNumberOfModes() const override;
    const SPM_MODE* getMode(std::int32_t index) const override;
    std::size_t getNumberOfDevices() const override;
    const char* getDevice(std::int32_t index) const override;
    bool setOptionsByName(const char* aperture, const char* auxiliary, const char* illumination) override;

    /// Selects options by index or value; one that no entry has keeps its earlier selection.
    /// @return whether each list that has entries has a selected one
    virtual bool setOptions(const SPM_OPTIONS_EX& options);

    const SPM_OPTION_MASKS& getOptionMasks() const { return optionMasks; }
    const SPM_OPTIONS_EX& getCurrentOptions() const { return currentOptions; }

protected:
    /// An entry of a capability list. The name is a constant that lives as long as the library.
    struct Entry {
        const char* name;
        std::uint32_t value;
    };
    using EntryList = std::vector<Entry>;

    /// Reads the settings and opens the log file when logging is on.
    /// @param model  the model name; lives as long as the library
    SPM_BASE(const char* model, bool flag);

    /// Completes a record from the lists: an index that its list has gives the value, else a value that an entry has
    /// gives the index, else both say none. A calibration step that there is not becomes SPM_STEP_NOTHING.
    [[nodiscard]] SPM_OPTIONS_EX resolved(const SPM_OPTIONS_EX& options) const;
    [[nodiscard]] SPM_CALIBRATION_EX resolved(const SPM_CALIBRATION_EX& calibration) const;

    /// Resolves the record in place.
    /// @return whether each list that has entries has a selected one
    [[nodiscard]] bool validate(SPM_OPTIONS_EX& options) const;

private:
    SPMRegistry registry;
    CAPLoggingFile logFile;
    const char* modelName;
    bool deviceFlag;

protected:
    EntryList apertures;
    EntryList auxiliaries;
    EntryList illuminations;
    SPM_OPTION_MASKS optionMasks{};
    SPM_OPTIONS_EX currentOptions;
    EntryList references;
    std::vector<SPM_MODE> modes;
    std::vector<const char*> devices;

private:
    template <class Record>
    Record withOptionsResolved(Record record) const;
    void openLogFile();
};

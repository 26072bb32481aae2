#pragma once

#include "cap/CAPLoggingFile.h"
#include "module/IScmSPM.h"
#include "module/SPMException.h"
#include "module/SPMRegistry.h"

#include <vector>

/// The common base of all device modules: capability lists, option selection, settings, and the dispatch of log
/// messages to the host's listener and the log file.
///
/// A device class fills the lists and masks in its constructor; they don't change afterwards.
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

    /// Selects options by index or value. An option for which neither is in its list keeps its earlier selection.
    /// @return whether every list that has entries has a selected one
    virtual bool setOptions(const SPM_OPTIONS_EX& options);

    const SPM_OPTION_MASKS& getOptionMasks() const { return optionMasks; }
    const SPM_OPTIONS_EX& getCurrentOptions() const { return currentOptions; }

protected:
    /// An entry of a capability list. The name must be a string literal.
    struct Entry {
        const char* name;
        std::uint32_t value;
    };
    using EntryList = std::vector<Entry>;

    /// Reads the settings, and opens the log file if logging is on.
    /// @param model  the model name; must be a string literal
    /// @param flag   returned by getDeviceFlag
    SPM_BASE(const char* model, bool flag);

    /// Completes the values and indexes of a record: for each option, a valid index determines the value, otherwise the
    /// value determines the index; if neither is in the list, they become 0 and -1. An unknown calibration step becomes
    /// SPM_STEP_NOTHING.
    [[nodiscard]] SPM_OPTIONS_EX resolved(const SPM_OPTIONS_EX& options) const;
    [[nodiscard]] SPM_CALIBRATION_EX resolved(const SPM_CALIBRATION_EX& calibration) const;

    /// Completes a record in place, as resolved() does.
    /// @return whether every list that has entries has a selected one
    [[nodiscard]] bool validate(SPM_OPTIONS_EX& options) const;

private: // the order of the members is fixed, so there are two private sections
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

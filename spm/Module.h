#pragma once

#include "common/System.h"
#include "module/IScmSPM.h"

#include <filesystem>
#include <string>

namespace spm {

/// The module beside this program, or else the one that was installed with it.
std::filesystem::path defaultModule();

/// The spectrophotometer module, loaded at run time, with its sixteen functions.
class Module {
public:
    /// Looks at the file and at the vendor's library before it loads them, since a damaged one can end the program.
    /// @throws Error  when the file can't be loaded or lacks a function
    explicit Module(const std::filesystem::path& path);

    /// The address of a function of the vendor's library that the module runs on; null for none.
    void* findInSdk(const char* name) const { return library.findInSdk(name); }

    /// The full version, such as "5.9.0.3", as the module's file tells it; what the module itself tells of it, when
    /// that can't be read.
    std::string version() const;

    /// What the vendor's library says of itself when it is a simulation; empty when it says nothing.
    std::string simulation() const;

private:
    template <class Function>
    Function find(const char* name) const;

    std::filesystem::path file;
    common::SharedLibrary library;

public:
    const SPM_create_t create;
    const SPM_destroy_t destroy;
    const SPM_open_t open;
    const SPM_close_t close;
    const SPM_isOpened_t isOpened;
    const SPM_calibrate_t calibrate;
    const SPM_isCalibrated_t isCalibrated;
    const SPM_getStatus_t getStatus;
    const SPM_getNumberOfReflections_t getNumberOfReflections;
    const SPM_read_t read;
    const SPM_readSpectrum_t readSpectrum;
    const SPM_setOptions_t setOptions;
    const SPM_getOptionMasks_t getOptionMasks;
    const SPM_getVersion_t getVersion;
    const SPM_getMinorVersion_t getMinorVersion;
    const SPM_getType_t getType;
};

} // namespace spm

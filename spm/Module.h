#pragma once

#include "common/SharedLibrary.h"
#include "module/IScmSPM.h"

#include <filesystem>
#include <string>

namespace spm {

/// The module in this program's folder or, if there is none, the one installed with the program.
std::filesystem::path defaultModule();

/// The SDK library that is likely to be loaded with a module: the one beside it or, on Linux, the first in the folders
/// of LD_LIBRARY_PATH.
std::filesystem::path sdkOf(const std::filesystem::path& module);

/// The spectrophotometer module, loaded at run time, with its sixteen functions.
class Module {
public:
    /// Reports truncated files before loading them: on Linux, that can end the program with a signal.
    /// @throws Error  if the module can't be loaded or lacks a function
    explicit Module(const std::filesystem::path& path);

    /// The address of a function in the SDK library that the module was loaded with; null if it has none.
    void* findInSdk(const char* name) const { return library.findInSdk(name); }

    /// The file version from the version resource, such as "5.9.0.3"; if it can't be read, the numbers that the
    /// module's functions return.
    std::string version() const;

    /// The SDK library's description of the simulation; empty if it isn't a simulation.
    std::string simulation() const;

    /// What to do about an instrument that can't be found, opened or used.
    std::string instrumentAdvice() const;

private:
    template <class Function>
    Function find(const char* name) const;

    std::filesystem::path file;
    common::SharedLibrary library;

public:
    // The module's functions, initialized from the library above.
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

#pragma once

#include "host/Module.h"
#include "simulator/Control.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <gtest/gtest.h>

/// Copies the built module and the simulated SDK library into a folder.
/// @return the module's copy
std::filesystem::path installModule(const TempFolder& folder);

/// Settings that switch logging on.
class LoggingOn : public Settings {
public:
    LoggingOn() { setNumber("Logging", 1); }
};

/// A copy of the built module in a folder of its own, beside the simulated SDK library, with logging on; loaded as a
/// host loads it, with one object and a listener.
class ModuleTest : public testing::Test {
protected:
    ModuleTest();
    ~ModuleTest() override;

    std::filesystem::path moduleFile() const { return folder / host::moduleFileName; }

    /// The calls of the SDK since the last time, such as "SetOption SIM1 MeasurementMode ReflectanceSpot".
    std::vector<std::string> takeCalls();

    /// What the log file says, without the heads of its lines and the first banner.
    std::vector<std::string> log() const;

    void open();
    /// Opens and calibrates; the button is pressed from then on.
    void prepare();

    std::filesystem::path logFile() const { return folder / "spm_i1pro3.log"; }

    TempFolder folder;
    LoggingOn settings;
    const host::Module module;
    simulator::Control& sdk;
    Recorder listener;
    SPM_HANDLE handle;
};

using Texts = std::vector<std::string>;

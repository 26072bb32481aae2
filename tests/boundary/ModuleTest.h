#pragma once

#include "spm/Module.h"
#include "tests/support/SimulatedSdk.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <gtest/gtest.h>

using Texts = std::vector<std::string>;

/// Copies the built module and the simulated SDK library into a folder.
/// @return the module's copy
std::filesystem::path installModule(const TempFolder& folder);

/// Settings that switch logging on.
class LoggingOn : public Settings {
public:
    LoggingOn() { setNumber("Logging", 1); }
};

/// A copy of the built module in a folder of its own, beside the simulated SDK library, with logging on; loaded as a
/// host loads it, with one object and a listener. The button is found pressed, and measurements have no noise.
class ModuleTest : public testing::Test {
protected:
    ModuleTest();
    ~ModuleTest() override;

    std::filesystem::path moduleFile() const { return folder / common::moduleFileName; }
    std::filesystem::path logFile() const { return folder / "spm_i1pro3.log"; }

    /// What the log file says, without the heads of its lines and the first banner.
    Texts log() const;

    /// Makes the next call of a function, such as "OpenDevice", give a result. Earlier faults are dropped.
    void failNextCall(const std::string& function, int32_t result = 9);

    void open();
    /// Opens and calibrates.
    void openAndCalibrate();

    TempFolder folder;
    EnvironmentVariable trace{"I1PRO3_TRACE", (folder / "calls.jsonl").string()};
    LoggingOn settings;
    const spm::Module module;
    SimulatedSdk sdk;
    RecordingListener listener;
    SPM_HANDLE handle;
};

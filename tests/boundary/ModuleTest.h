#pragma once

#include "spm/Module.h"
#include "tests/support/SimulatedSdk.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <gtest/gtest.h>

using Texts = std::vector<std::string>;

/// The calls that close a connection.
inline const Texts closing{"GetConnectionStatus SIM1", "CloseDevice SIM1", "SetGlobalOption Reset All"};

/// Copies the built module and the simulated SDK library to a folder.
/// @return the copy of the module
std::filesystem::path installModule(const TempFolder& folder);

/// Settings that switch logging on.
class LoggingOn : public Settings {
public:
    LoggingOn() { setNumber("Logging", 1); }
};

/// Loads a copy of the built module as a host does, in its own folder beside the simulated SDK library, with logging
/// on. Creates one object with a listener. The simulated button is always pressed, and measurements have no noise.
class ModuleTest : public testing::Test {
protected:
    ModuleTest();
    ~ModuleTest() override;

    std::filesystem::path logFile() const { return folder / "spm_i1pro3.log"; }

    /// Returns the messages in the log file, without the first banner.
    Texts log() const;

    /// Makes the next call of a function, such as "OpenDevice", return a result. Replaces earlier faults.
    void failNextCall(const std::string& function, int32_t result = 9);

    void open();
    void openAndCalibrate();

    TempFolder folder;
    EnvironmentVariable trace{"I1PRO3_TRACE", (folder / "calls.jsonl").string()};
    LoggingOn settings;
    const spm::Module module;
    SimulatedSdk sdk;
    RecordingListener listener;
    SPM_HANDLE handle;
};

#pragma once

#include "host/Module.h"
#include "simulator/Control.h"
#include "tests/support/Support.h"

#include <gtest/gtest.h>

/// Copies the built module and the simulated SDK library into a folder, with a file "settings.reg" that switches
/// logging on.
/// @return the module's copy
std::filesystem::path installModule(const TempFolder& folder);

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

    TempFolder folder;
    EnvironmentVariable settings{"SPM_REGISTRY", (folder / "settings.reg").string()};
    const host::Module module;
    simulator::Control& sdk;
    Recorder listener;
    SPM_HANDLE handle;
};

using Texts = std::vector<std::string>;

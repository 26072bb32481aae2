#pragma once

#include "host/Module.h"
#include "simulator/Control.h"

/// The control of the simulated SDK library that a loaded module runs on.
inline simulator::Control& simulatorOf(const host::Module& module) {
    using Control = simulator::Control* (*)();
    return *reinterpret_cast<Control>(module.findInSdk("I1PRO3_SimulatorControl"))();
}

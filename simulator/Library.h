#pragma once

#include "simulator/Call.h"

#include <functional>
#include <memory>

namespace simulator {

/// Calls the function at this address with the host's arguments.
using Forward = std::function<std::int32_t(void* address)>;

/// What answers the calls of the exported functions: the simulation or the recorder.
class Library {
public:
    virtual ~Library() = default;

    /// The name for Call::device; "unknown" if the handle is invalid.
    virtual std::string nameOf(I1PRO3_DeviceHandle device) const = 0;
    /// Executes a host's call and returns the function's result.
    virtual std::int32_t perform(const Call& call, const Outputs& outputs, const Forward& forward) = 0;
    /// Implements I1PRO3_SimulatorDescription.
    virtual const char* description() const = 0;
};

/// The simulated SDK library and the recorder each define this. Called once.
std::unique_ptr<Library> createLibrary();

/// The object that createLibrary returned; exists until the library is unloaded.
Library& library();

} // namespace simulator

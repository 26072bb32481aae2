#pragma once

#include "common/SharedLibrary.h"
#include "i1pro3/I1PRO3_SDK.h"

#include <exception>
#include <string>
#include <vector>

/// Runs a function and returns the message of the exception that it throws; empty if it throws none.
template <class Work>
std::string errorOf(Work work) try {
    work();
    return "";
} catch (const std::exception& error) {
    return error.what();
}

extern const std::filesystem::path simulatorFile;

/// Resets the simulated library to its state after loading, then applies a script.
/// @throws std::runtime_error  if the script is invalid
void beginScript(const std::string& script);

/// Applies a script to the simulated library in its current state.
/// @throws std::runtime_error  if the script is invalid
void useScript(const std::string& script);

/// Loads an SDK library and calls its functions as given in text form.
class SdkHost {
public:
    explicit SdkHost(const std::filesystem::path& file = simulatorFile) : library(file) {}

    /// Calls a function.
    /// @param line  the function and its arguments, such as "GetOption SIM1 SerialNumber 5". SIM1 is the first device
    ///               listed, SIM2 the second, "unknown" an invalid handle. A buffer is given by its size alone; "null"
    ///               before the size, or before the sample, passes a null buffer
    /// @return the function's result
    std::int32_t call(const std::string& line);

    /// Returns the value of "LastErrorText".
    std::string lastError();

    /// The output of the last call.
    std::vector<float> values;
    std::string text;

private:
    template <class... Arguments>
    std::int32_t invoke(const std::string& function, Arguments... arguments) const;
    std::int32_t listDevices(bool hasList);
    I1PRO3_DeviceHandle deviceOf(const std::string& word);

    common::SharedLibrary library;
    std::vector<I1PRO3_DeviceHandle> devices;
};

#pragma once

#include "common/System.h"
#include "i1pro3/I1PRO3_SDK.h"

#include <exception>
#include <string>
#include <vector>

/// What an exception of some work says; empty when it throws none.
template <class Work>
std::string errorOf(Work work) try {
    work();
    return "";
} catch (const std::exception& error) {
    return error.what();
}

extern const std::filesystem::path simulatorFile;

/// Puts the simulated library back to how it was when it was loaded, then applies a script.
/// @throws std::runtime_error  when the script is wrong
void beginScript(const std::string& script);

/// Applies a script to the simulated library as it is.
/// @throws std::runtime_error  when the script is wrong
void useScript(const std::string& script);

/// A host of an SDK library that makes calls written as texts.
class SdkHost {
public:
    explicit SdkHost(const std::filesystem::path& file = simulatorFile) : library(file) {}

    /// @param line  "GetOption SIM1 SerialNumber 5": SIM1 is the first device listed, SIM2 the second, "unknown" none;
    ///               a buffer is its size
    /// @return the function's result
    std::int32_t call(const std::string& line);

    /// What "LastErrorText" says.
    std::string lastError();

    /// What the last call handed out.
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

#pragma once

#include "cap/CAPRegistry.h"

/// The module's settings: the key SOFTWARE\Kestrova\SPM, common to all device models, or a model's own key below it.
class SPMRegistry : public CAPRegistry {
public:
    /// The names of the values: "Logging" and "Details" are numbers in the common key, "Device" is a text in a model's
    /// key.
    static constexpr const char* logging = "Logging";
    static constexpr const char* details = "Details";
    static constexpr const char* device = "Device";

    SPMRegistry();
    explicit SPMRegistry(const std::string& modelName);

    /// Returns the full path of the common key, or of a model's key.
    static std::string path();
    static std::string path(const std::string& modelName);
};

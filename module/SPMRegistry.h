#pragma once

#include "cap/CAPRegistry.h"

/// The module's settings: the key SOFTWARE\Kestrova\SPM, shared by all device models, or a model's own key below it.
class SPMRegistry : public CAPRegistry {
public:
    /// The names of the values: numbers in the common key, and a text in a model's own.
    static constexpr const char* logging = "Logging";
    static constexpr const char* details = "Details";
    static constexpr const char* device = "Device";

    SPMRegistry();
    explicit SPMRegistry(const std::string& modelName);

    /// The full path of the common key, and of a model's own.
    static std::string path();
    static std::string path(const std::string& modelName);
};

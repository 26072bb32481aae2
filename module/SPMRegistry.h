#pragma once

#include "cap/CAPRegistry.h"

/// The module's settings: the key SOFTWARE\Kestrova\SPM, shared by all device models, or a model's own key below it.
class SPMRegistry : public CAPRegistry {
public:
    SPMRegistry();
    explicit SPMRegistry(const std::string& modelName);
};

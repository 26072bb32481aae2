#pragma once

#include "cap/CAPRegistry.h"

/// The module's settings: the key SOFTWARE\Kestrova\SPM, common to all device models, or a model's own key below it.
class SPMRegistry : public CAPRegistry {
public:
    SPMRegistry();
    explicit SPMRegistry(const std::string& modelName);
};

#include "module/SPMRegistry.h"

SPMRegistry::SPMRegistry() : CAPRegistry("SPM") {}

SPMRegistry::SPMRegistry(const std::string& modelName) : CAPRegistry("SPM\\" + modelName) {}

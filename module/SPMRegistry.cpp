#include "module/SPMRegistry.h"

namespace {

constexpr const char* commonKey = "SPM";

std::string keyOf(const std::string& modelName) {
    return std::string(commonKey) + '\\' + modelName;
}

} // namespace

SPMRegistry::SPMRegistry() : CAPRegistry(commonKey) {}

SPMRegistry::SPMRegistry(const std::string& modelName) : CAPRegistry(keyOf(modelName)) {}

std::string SPMRegistry::path() {
    return pathOf(commonKey);
}

std::string SPMRegistry::path(const std::string& modelName) {
    return pathOf(keyOf(modelName));
}

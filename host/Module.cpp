#include "host/Module.h"

#include "host/HostError.h"

namespace host {

template <class Function>
Function Module::find(const char* name) const {
    void* const address = library.find(name);
    if (address == nullptr) throw HostError(file.string() + " is not a spectrophotometer module: it has no " + name);
    return reinterpret_cast<Function>(address);
}

namespace {

loader::SharedLibrary load(const std::filesystem::path& path) try {
    return loader::SharedLibrary(path);
} catch (const loader::LoadError& error) {
    throw HostError("can't load the module " + std::string(error.what()),
                    "name another one with --module, or see what \"spm doctor\" finds");
}

} // namespace

std::filesystem::path defaultModule() {
    std::filesystem::path beside = programFolder() / moduleFileName;
    if (std::filesystem::exists(beside)) return beside;
    return (programFolder() / SPM_INSTALLED_MODULE_FOLDER / moduleFileName).lexically_normal();
}

#define FIND(name) name(find<SPM_##name##_t>("SPM_" #name))

Module::Module(const std::filesystem::path& path)
    : file(path), library(load(path)), FIND(create), FIND(destroy), FIND(open), FIND(close), FIND(isOpened),
      FIND(calibrate), FIND(isCalibrated), FIND(getStatus), FIND(getNumberOfReflections), FIND(read),
      FIND(readSpectrum), FIND(setOptions), FIND(getOptionMasks), FIND(getVersion), FIND(getMinorVersion),
      FIND(getType) {}

#undef FIND

std::string Module::simulation() const {
    using Description = const char* (*)();
    const auto description = reinterpret_cast<Description>(findInSdk("I1PRO3_SimulatorDescription"));
    const char* const text = description != nullptr ? description() : nullptr;
    return text != nullptr ? text : "";
}

} // namespace host

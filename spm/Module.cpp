#include "spm/Module.h"

#include "cap/CAPFileVersionInfo.h"
#include "common/Environment.h"
#include "common/LibraryNames.h"
#include "common/SharedLibrary.h"
#include "spm/Error.h"

#include <fmt/format.h>
#include <sstream>
#include <system_error>

namespace spm {

template <class Function>
Function Module::find(const char* name) const {
    void* const address = library.find(name);
    if (address != nullptr) return reinterpret_cast<Function>(address);
    throw Error(fmt::format("{} is not a spectrophotometer module: it has no {}", file.string(), name),
                "choose another one with --module");
}

namespace {

common::SharedLibrary load(const std::filesystem::path& path) try {
    common::requireComplete(sdkOf(path));
    return common::SharedLibrary(path);
} catch (const Error& error) {
    throw Error("can't load the module: " + error.failure(),
                error.advice() + "; choose another module with --module, or run \"spm doctor\" for details");
}

} // namespace

std::filesystem::path defaultModule() {
    std::filesystem::path adjacent = common::programFolder() / common::moduleFileName;
    if (std::filesystem::exists(adjacent)) return adjacent;
    return (common::programFolder() / SPM_INSTALLED_MODULE_FOLDER / common::moduleFileName).lexically_normal();
}

std::filesystem::path sdkOf(const std::filesystem::path& module) {
    const auto folders = common::pathFromEnvironment("LD_LIBRARY_PATH");
    std::istringstream list(folders ? folders->string() : "");
    for (std::string folder; std::getline(list, folder, ':');) {
        std::filesystem::path sdk = std::filesystem::path(folder) / common::sdkFileName;
        std::error_code ignored;
        if (std::filesystem::exists(sdk, ignored)) return sdk;
    }
    return std::filesystem::absolute(module).parent_path() / common::sdkFileName;
}

// Takes the function pointer's type from the declaration in SPM.h, so that a member of another type doesn't compile.
#define FIND(name) name(find<decltype(&SPM_##name)>("SPM_" #name))

Module::Module(const std::filesystem::path& path)
    : file(path), library(load(path)), FIND(create), FIND(destroy), FIND(open), FIND(close), FIND(isOpened),
      FIND(calibrate), FIND(isCalibrated), FIND(getStatus), FIND(getNumberOfReflections), FIND(read),
      FIND(readSpectrum), FIND(setOptions), FIND(getOptionMasks), FIND(getVersion), FIND(getMinorVersion),
      FIND(getType) {}

#undef FIND

std::string Module::version() const {
    CAPFileVersionInfo info;
    void* const loaded = common::libraryOf(reinterpret_cast<const void*>(create));
    if (info.loadFromModule(static_cast<HMODULE>(loaded)) == 0) {
        return fmt::format("{}.{}", getMinorVersion(), getVersion(nullptr));
    }
    return fmt::format("{}.{}.{}.{}", info.getFileVersionPart(3), info.getFileVersionPart(2),
                       info.getFileVersionPart(1), info.getFileVersionPart(0));
}

std::string Module::simulation() const {
    using Description = const char* (*)();
    const auto description = reinterpret_cast<Description>(findInSdk("I1PRO3_SimulatorDescription"));
    const char* const text = description != nullptr ? description() : nullptr;
    return text != nullptr ? text : "";
}

std::string Module::instrumentAdvice() const {
    if (simulation().empty()) return "connect one by USB, close other programs that use it, and try again";
    return "it is simulated: check the files that I1PRO3_SIMULATOR and I1PRO3_TRACE name";
}

} // namespace spm

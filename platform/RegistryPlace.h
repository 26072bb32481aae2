#pragma once

/// Where the registry's values are stored, in words for the user.
#ifdef _WIN32
inline const char* registryPlace() {
    return "the registry";
}
#else
/// The path of the settings file: the environment variable SPM_REGISTRY, or the default.
const char* registryPlace();
#endif

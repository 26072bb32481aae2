#pragma once

/// Where the registry's values are stored, as a user knows the place.
#ifdef _WIN32
inline const char* registryPlace() {
    return "the registry";
}
#else
/// The settings file: the environment variable SPM_REGISTRY, or the default.
const char* registryPlace();
#endif

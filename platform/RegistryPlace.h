#pragma once

/// Where the registry's values are stored, in words for the user.
#ifdef _WIN32
inline const char* registryPlace() {
    return "the registry";
}
/// How to get the right to write there, without which the module reads no settings.
inline constexpr const char* registryAdvice = "run the measuring program as administrator";
#else
/// The path of the settings file: the environment variable SPM_REGISTRY, or the default.
const char* registryPlace();
inline constexpr const char* registryAdvice =
    "give this user permission to read and write the file or, if it does not exist, to create it; or set SPM_REGISTRY "
    "to another file";
#endif

#pragma once

namespace registry {

/// The settings file: the environment variable SPM_REGISTRY, or the default.
const char* storePath();

} // namespace registry

#pragma once

#include "platform/win32.h"

#include <string>

/// The full path of a loaded module's file; empty when there is none, or when it has 260 (MAX_PATH) characters or more
/// and would be cut.
std::string ModuleFileName(HMODULE module);

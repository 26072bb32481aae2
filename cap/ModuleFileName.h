#pragma once

#include "platform/win32.h"

#include <string>

/// Returns the full path of a loaded module's file; empty if there is none, or if the path has 260 (MAX_PATH)
/// characters or more and would be truncated.
std::string ModuleFileName(HMODULE module);

#pragma once

#include "platform/win32.h"

/// The handle of the library that contains this code; null until DllMain has run.
HMODULE moduleHandle();

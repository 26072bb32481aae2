#pragma once

#include "platform/win32.h"

/// The handle of the library that this code is part of; null until the library is attached.
HMODULE moduleHandle();

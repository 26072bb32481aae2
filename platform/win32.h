#pragma once

// The system, under the names of Win32: on Windows its own headers, elsewhere declarations of just what is called,
// implemented in platform/posix/. No other source tells the two apart.

#ifdef _WIN32

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <io.h>
#include <stdio.h>
#include <sys/timeb.h>
#include <time.h>
#include <windows.h>
#include <winver.h>

#else

#include "platform/posix/win32.h"

#endif

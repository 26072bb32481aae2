#pragma once

// Win32: the system's own headers on Windows; elsewhere declarations of the few functions that the project calls,
// implemented in platform/posix/. Outside platform/, no header distinguishes the systems.

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

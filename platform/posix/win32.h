#pragma once

// The functions of Win32 and of the Windows C runtime that cap/ and module/ call, with the types, values and results
// that they have on Windows. Texts are single-byte strings. Failures don't set the last-error code, which nobody reads.

#include <cstdint>
#include <cstdio>
#include <ctime>

// NOLINTBEGIN(bugprone-reserved-identifier): the system's names

using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using LONG = std::int32_t;
using LSTATUS = LONG;
using HANDLE = void*;
using LPVOID = void*;
using LPBYTE = BYTE*;
using REGSAM = DWORD;
using LANGID = WORD;

struct HKEY__;
using HKEY = HKEY__*;
/// A loaded library or program, identified by its base address.
struct HINSTANCE__;
using HINSTANCE = HINSTANCE__*;
using HMODULE = HINSTANCE;

#define WINAPI

inline constexpr BOOL TRUE = 1;
inline constexpr BOOL FALSE = 0;
inline constexpr DWORD MAX_PATH = 260;
inline constexpr DWORD DLL_PROCESS_ATTACH = 1;

inline constexpr LSTATUS ERROR_SUCCESS = 0;
inline constexpr LSTATUS ERROR_FILE_NOT_FOUND = 2;
inline constexpr LSTATUS ERROR_ACCESS_DENIED = 5;
inline constexpr LSTATUS ERROR_READ_FAULT = 30;
inline constexpr LSTATUS ERROR_DISK_FULL = 112;
inline constexpr LSTATUS ERROR_MORE_DATA = 234;
inline constexpr LSTATUS ERROR_NO_MORE_ITEMS = 259;
inline constexpr LSTATUS ERROR_BADDB = 1009;

// The registry: a text file in the REGEDIT4 format, named by the environment variable SPM_REGISTRY. It is created when
// a key is opened for writing.

#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(std::uintptr_t{0x80000002}))

inline constexpr REGSAM KEY_READ = 0x20019;
inline constexpr REGSAM KEY_WRITE = 0x20006;

inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_DWORD = 4;

LSTATUS RegOpenKeyExA(HKEY parent, const char* path, DWORD options, REGSAM access, HKEY* key);
LSTATUS RegCreateKeyA(HKEY parent, const char* path, HKEY* key);
LSTATUS RegQueryValueExA(HKEY key, const char* name, DWORD* reserved, DWORD* type, LPBYTE data, DWORD* size);
LSTATUS RegEnumValueA(HKEY key, DWORD index, char* name, DWORD* length, DWORD* reserved, DWORD* type, LPBYTE data,
                      DWORD* size);
LSTATUS RegCloseKey(HKEY key);

// Modules, processes and threads.

/// Writes the path of a loaded library, or of the running program for a null handle.
/// @return the length of the path; 0 if there is no such module; `size` if the path was truncated
DWORD GetModuleFileNameA(HMODULE module, char* name, DWORD size);
DWORD GetCurrentProcessId();
DWORD GetCurrentThreadId();

// Version resources: a section of an ELF file, see VersionEntry.h.

struct VS_FIXEDFILEINFO {
    DWORD dwSignature;
    DWORD dwStrucVersion;
    DWORD dwFileVersionMS;
    DWORD dwFileVersionLS;
    DWORD dwProductVersionMS;
    DWORD dwProductVersionLS;
    DWORD dwFileFlagsMask;
    DWORD dwFileFlags;
    DWORD dwFileOS;
    DWORD dwFileType;
    DWORD dwFileSubtype;
    DWORD dwFileDateMS;
    DWORD dwFileDateLS;
};

DWORD GetFileVersionInfoSizeA(const char* path, DWORD* ignored);
BOOL GetFileVersionInfoA(const char* path, DWORD ignored, DWORD size, void* block);
BOOL VerQueryValueA(const void* block, const char* path, LPVOID* value, UINT* length);

/// US English, the language of the version resources on these systems.
LANGID GetUserDefaultLangID();

// Time.

using errno_t = int;
using __time64_t = std::int64_t;

struct __timeb64 {
    __time64_t time;
    unsigned short millitm;
    /// Minutes west of UTC, without daylight saving.
    short timezone;
    short dstflag;
};

/// Sets the milliseconds to 0.
void _ftime64(__timeb64* now);
errno_t _localtime64_s(std::tm* local, const __time64_t* time);

// NOLINTEND(bugprone-reserved-identifier)

/* What the examples in C and C++ need from the system: paths, loading libraries at run time, and a pause. */
#ifndef SYSTEM_H
#define SYSTEM_H

#include <stddef.h>
#include <stdio.h>
#include <string.h>

#ifdef _WIN32
#include <wchar.h>
#include <windows.h>

/* A char can't represent every path: the code page lacks most characters. */
typedef wchar_t path_char;

/* An argument of the program that is a path. The texts that main receives are in the code page. */
static inline const path_char* path_argument(char** arguments, int number) {
    int count = 0;
    (void)arguments;
    return CommandLineToArgvW(GetCommandLineW(), &count)[number];
}

/* Writes the path of the listener library that is beside a module. */
static inline void find_listener(path_char* listener, size_t size, const path_char* module) {
    const path_char* const extension = wcsrchr(module, L'.');
    const int length = (int)(extension != NULL ? extension - module : (ptrdiff_t)wcslen(module));
    swprintf(listener, size, L"%.*ls_listener%ls", length, module, module + length);
}

/* Searches for the libraries that this one needs only in its own folder and in the system's. */
static inline void* load_library(const path_char* path) {
    path_char full[1024];
    const DWORD length = GetFullPathNameW(path, 1024, full, NULL);
    if (length == 0 || length >= 1024) return NULL;
    return LoadLibraryExW(full, NULL, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
}

/* The system's message about the failure of the last call. */
static inline const char* load_error(void) {
    static char text[256];
    const DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
    FormatMessageA(flags, NULL, GetLastError(), 0, text, sizeof text, NULL);
    return text;
}

/* `function` is the address of a function pointer. The address is copied, as standard C has no cast for it. */
static inline int find_function(void* library, const char* name, void* function) {
    const FARPROC address = GetProcAddress((HMODULE)library, name);
    memcpy(function, &address, sizeof address);
    return address != NULL;
}

static inline void wait_a_moment(void) {
    Sleep(50);
}
#else
#include <dlfcn.h>
#include <poll.h>

typedef char path_char;

static inline const path_char* path_argument(char** arguments, int number) {
    return arguments[number];
}

static inline void find_listener(path_char* listener, size_t size, const path_char* module) {
    const path_char* const extension = strrchr(module, '.');
    const int length = (int)(extension != NULL ? extension - module : (ptrdiff_t)strlen(module));
    snprintf(listener, size, "%.*s_listener%s", length, module, module + length);
}

static inline void* load_library(const path_char* path) {
    return dlopen(path, RTLD_NOW | RTLD_LOCAL);
}

static inline const char* load_error(void) {
    return dlerror();
}

static inline int find_function(void* library, const char* name, void* function) {
    void* const address = dlsym(library, name);
    memcpy(function, &address, sizeof address);
    return address != NULL;
}

static inline void wait_a_moment(void) {
    poll(NULL, 0, 50);
}
#endif

/* wait_a_moment returns this many times in a minute. */
enum { moments_per_minute = 1200 };

#endif

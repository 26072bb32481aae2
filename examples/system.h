/* What the examples in C and C++ need from the system: loading libraries at run time, and a pause. */
#ifndef SYSTEM_H
#define SYSTEM_H

#include <stddef.h>
#include <string.h>

#ifdef _WIN32
#include <windows.h>

/* Searches for the libraries that this one needs only in its own folder and in the system's. */
static inline void* load_library(const char* path) {
    char full[MAX_PATH];
    if (GetFullPathNameA(path, sizeof full, full, NULL) == 0) return NULL;
    return LoadLibraryExA(full, NULL, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
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
#include <time.h>

static inline void* load_library(const char* path) {
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
    const struct timespec moment = {0, 50000000};
    nanosleep(&moment, NULL);
}
#endif

#endif

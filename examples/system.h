/* What the examples in C and C++ need of the system: libraries that are loaded at run time, and a pause. */
#ifndef SYSTEM_H
#define SYSTEM_H

#include <stddef.h>
#include <string.h>

#ifdef _WIN32
#include <windows.h>

/* Searches only the library's own folder and the system's for the libraries that it needs. */
static inline void* load_library(const char* path) {
    char full[MAX_PATH];
    if (GetFullPathNameA(path, sizeof full, full, NULL) == 0) return NULL;
    return LoadLibraryExA(full, NULL, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
}

/* Why the last call failed, in the system's words. */
static inline const char* load_error(void) {
    static char text[256];
    const DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
    FormatMessageA(flags, NULL, GetLastError(), 0, text, sizeof text, NULL);
    return text;
}

/* Stores the address in `function`, a pointer to a function pointer, which standard C can't cast to. */
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

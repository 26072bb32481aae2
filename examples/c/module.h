/* The functions of the module and of the listener library that the example uses, and error messages for them. */
#ifndef MODULE_H
#define MODULE_H

#include "../system.h"

#include <SPM_listener.h>

static struct {
    SPM_create_t create;
    SPM_destroy_t destroy;
    SPM_open_t open;
    SPM_close_t close;
    SPM_isOpened_t isOpened;
    SPM_calibrate_t calibrate;
    SPM_read_t read;
    SPM_readSpectrum_t readSpectrum;
    SPM_subscribe_t subscribe;
    SPM_unsubscribe_t unsubscribe;
} spm;

static bool find_functions(void* module, void* listener) {
    return find_function(module, "SPM_create", &spm.create) && find_function(module, "SPM_destroy", &spm.destroy) &&
           find_function(module, "SPM_open", &spm.open) && find_function(module, "SPM_close", &spm.close) &&
           find_function(module, "SPM_isOpened", &spm.isOpened) &&
           find_function(module, "SPM_calibrate", &spm.calibrate) && find_function(module, "SPM_read", &spm.read) &&
           find_function(module, "SPM_readSpectrum", &spm.readSpectrum) &&
           find_function(listener, "SPM_subscribe", &spm.subscribe) &&
           find_function(listener, "SPM_unsubscribe", &spm.unsubscribe);
}

/* Loads the module, and the listener library beside it. */
static bool load_module(const path_char* path) {
    path_char listener_path[1024];
    find_listener(listener_path, sizeof listener_path / sizeof *listener_path, path);
    void* const module = load_library(path);
    void* const listener = module != NULL ? load_library(listener_path) : NULL;
    if (listener != NULL && find_functions(module, listener)) return true;
    fprintf(stderr, "measure: can't load the %s: %s\n", module == NULL ? "module" : "listener library", load_error());
    return false;
}

static char reason[512]; /* the module's last error message, empty if there is none */

static void keep_reason(void* context, int32_t level, int32_t module_number, int32_t error_number, const char* text,
                        const char* detail) {
    (void)context, (void)module_number, (void)error_number;
    if (level == 0) snprintf(reason, sizeof reason, "%s%s%s", text, detail[0] != '\0' ? " " : "", detail);
}

/* Prints what failed, and the module's message or, if there is none, the given reason. */
static bool fail(const char* what, const char* default_reason) {
    fprintf(stderr, "measure: %s: %s\n", what, reason[0] != '\0' ? reason : default_reason);
    return false;
}

#endif

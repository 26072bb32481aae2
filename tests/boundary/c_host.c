/* A host in C99: proves that the header is C, and that a program may end while an object lives.
   Use: c_host MODULE [leave], the second to end without closing and destroying. Exit status 0 when all went well. */

#include "module/SPM.h"

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

typedef char spectrum_is_packed[sizeof(SPM_SPECTRUM) == 12 ? 1 : -1];
typedef char text_is_packed[sizeof(SPM_TEXT) == 12 ? 1 : -1];
typedef char version_is_packed[sizeof(SPM_VERSION) == 16 ? 1 : -1];
typedef char bool_is_a_byte[sizeof(bool) == 1 ? 1 : -1];

static SPM_create_t create;
static SPM_destroy_t destroy;
static SPM_open_t open_device;
static SPM_close_t close_device;
static SPM_calibrate_t calibrate;
static SPM_getOptionMasks_t get_option_masks;
static SPM_getStatus_t get_status;
static SPM_readSpectrum_t read_spectrum;

static SPM_HANDLE handle;

static int fail(const char* what) {
    fprintf(stderr, "c_host: %s failed\n", what);
    return 1;
}

static int load(const char* path) {
    struct {
        const char* name;
        void* function;
    } const functions[] = {
        {"SPM_create", &create},        {"SPM_destroy", &destroy},
        {"SPM_open", &open_device},     {"SPM_close", &close_device},
        {"SPM_calibrate", &calibrate},  {"SPM_getOptionMasks", &get_option_masks},
        {"SPM_getStatus", &get_status}, {"SPM_readSpectrum", &read_spectrum},
    };
    void* const library = dlopen(path, RTLD_NOW);
    if (library == NULL) return fail(dlerror());
    for (size_t i = 0; i < sizeof functions / sizeof functions[0]; ++i) {
        void* const address = dlsym(library, functions[i].name);
        if (address == NULL) return fail(functions[i].name);
        memcpy(functions[i].function, &address, sizeof address);
    }
    return 0;
}

static int measure(void) {
    SPM_CALIBRATION calibration = {0, 0, 0, 0, SPM_STEP_BEGIN};
    SPM_REFLECTION reflections[36] = {{0, 0}};
    SPM_SPECTRUM spectrum = {36, reflections};
    int32_t count = 0;
    if (!open_device(handle, "USB")) return fail("open");
    if (get_status(handle).aperture != 1) return fail("getStatus");
    do {
        calibrate(handle, &calibration);
    } while (calibration.step == SPM_STEP_CONTINUE);
    if (calibration.step != SPM_STEP_DONE) return fail("calibrate");
    while (count == 0) {
        count = 1;
        if (!read_spectrum(handle, &spectrum, &count)) return fail("readSpectrum");
    }
    if (reflections[35].wavelength != 730 || reflections[35].value <= 0) return fail("the spectrum");
    return 0;
}

int main(int argc, char** argv) {
    if (argc < 2 || load(argv[1]) != 0) return 1;
    handle = create();
    if (handle == NULL) return fail("create");
    if (get_option_masks(handle).modeMask != 3) return fail("getOptionMasks");
    if (measure() != 0) return 1;
    if (argc > 2) return 0;
    close_device(handle);
    destroy(handle);
    return 0;
}

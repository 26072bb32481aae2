/* A host in C99 that is linked with the module: proves that the header is C, that C and the module's import library
   agree, and that a program may end while an object lives.
   Use: c_host [leave], to end without closing and destroying. Exit status 0 when all went well. */

#include "module/SPM.h"

#include <stdio.h>

typedef char spectrum_is_packed[sizeof(SPM_SPECTRUM) == 12 ? 1 : -1];
typedef char text_is_packed[sizeof(SPM_TEXT) == 12 ? 1 : -1];
typedef char version_is_packed[sizeof(SPM_VERSION) == 16 ? 1 : -1];
typedef char bool_is_a_byte[sizeof(bool) == 1 ? 1 : -1];

static SPM_HANDLE handle;

static int fail(const char* what) {
    fprintf(stderr, "c_host: %s failed\n", what);
    return 1;
}

static int measure(void) {
    SPM_CALIBRATION calibration = {0, 0, 0, 0, SPM_STEP_BEGIN};
    SPM_REFLECTION reflections[36] = {{0, 0}};
    SPM_SPECTRUM spectrum = {36, reflections};
    int32_t count = 0;
    if (!SPM_open(handle, "USB")) return fail("open");
    if (SPM_getStatus(handle).aperture != 1) return fail("getStatus");
    do {
        SPM_calibrate(handle, &calibration);
    } while (calibration.step == SPM_STEP_CONTINUE);
    if (calibration.step != SPM_STEP_DONE) return fail("calibrate");
    while (count == 0) {
        count = 1;
        if (!SPM_readSpectrum(handle, &spectrum, &count)) return fail("readSpectrum");
    }
    if (reflections[35].wavelength != 730 || reflections[35].value <= 0) return fail("the spectrum");
    return 0;
}

int main(int argc, char** argv) {
    (void)argv;
    handle = SPM_create();
    if (handle == NULL) return fail("create");
    if (SPM_getOptionMasks(handle).modeMask != 3) return fail("getOptionMasks");
    if (measure() != 0) return 1;
    if (argc > 1) return 0;
    SPM_close(handle);
    SPM_destroy(handle);
    return 0;
}

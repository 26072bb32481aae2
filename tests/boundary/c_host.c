/* A host in C99 that is linked with the module: proves that the header is C, that C and the module's import library
   agree, and that a program may end while an object lives.
   Use: c_host [leave | late], to end without closing and destroying, or to destroy when the library's own static
   objects are gone. Exit status 0 when all went well. */

#include "module/SPM.h"

#undef NDEBUG
#include <assert.h>
#include <stdlib.h>
#include <string.h>

static SPM_HANDLE handle;

static void measure(void) {
    SPM_CALIBRATION calibration = {0, 0, 0, 0, SPM_STEP_BEGIN};
    SPM_REFLECTION reflections[36] = {{0, 0}};
    SPM_SPECTRUM spectrum = {36, reflections};
    int32_t count = 0;
    assert(SPM_open(handle, "USB"));
    assert(SPM_getStatus(handle).aperture == 1);
    do {
        SPM_calibrate(handle, &calibration);
    } while (calibration.step == SPM_STEP_CONTINUE);
    assert(calibration.step == SPM_STEP_DONE);
    while (count == 0) {
        count = 1;
        assert(SPM_readSpectrum(handle, &spectrum, &count));
    }
    assert(reflections[35].wavelength == 730 && reflections[35].value > 0);
}

static void destroy(void) {
    SPM_destroy(handle);
}

int main(int argc, char** argv) {
    if (argc > 1 && strcmp(argv[1], "late") == 0) atexit(destroy);
    handle = SPM_create();
    assert(SPM_getOptionMasks(handle).modeMask == 3);
    measure();
    if (argc > 1) return 0;
    SPM_close(handle);
    destroy();
    return 0;
}

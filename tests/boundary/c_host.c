/* A host in C99 that is linked to the module. It proves that the header is valid C, that the import library works from
   C, and that a program may exit without destroying its objects.
   Usage: c_host [leave | late]
     leave  exits without closing and destroying
     late   destroys the object in an exit handler, when the library's static objects may be gone
   The exit status is 0 on success. */

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

/* Measures a row of six patches and the spectrum of one more.
   Usage: measure MODULE, the path of the spectrophotometer module. Exit status: 0 if everything was measured. */

#include "module.h"

enum { patches = 6, reflections = 36 };

static bool calibrate(SPM_HANDLE handle) {
    SPM_CALIBRATION dialogue = {0, 0, 0, 0, SPM_STEP_BEGIN};
    spm.calibrate(handle, &dialogue);
    if (dialogue.step == SPM_STEP_CONTINUE) {
        puts("Place the instrument on its white reference and press the button within a minute.");
    }
    for (int moments = 0; dialogue.step == SPM_STEP_CONTINUE; ++moments) {
        if (moments == moments_per_minute) return fail("not calibrated", "the button was not pressed");
        wait_a_moment();
        spm.calibrate(handle, &dialogue);
    }
    return dialogue.step == SPM_STEP_DONE || fail("not calibrated", "the connection was lost");
}

/* Pauses between two reads. Returns false if there is no point in another one. */
static bool wait_for_user(SPM_HANDLE handle, int* moments) {
    if (!spm.isOpened(handle)) return fail("not measured", "the connection was lost");
    if (++*moments > moments_per_minute) return fail("not measured", "the button was not pressed, or no patch found");
    wait_a_moment();
    return true;
}

static bool print_row(const SPM_LAB* values, int32_t count) {
    for (int32_t i = 0; i < count; ++i) {
        printf("L* %6.2f  a* %6.2f  b* %6.2f\n", values[i].L, values[i].a, values[i].b);
    }
    return count == patches || fail("not measured", "not all patches of the row were found");
}

static bool measure_row(SPM_HANDLE handle) {
    SPM_LAB values[patches];
    int moments = 0;
    puts("Press the button and slide the instrument along the row, within a minute.");
    for (int32_t count = patches; spm.read(handle, values, &count); count = patches) {
        if (count > 0) return print_row(values, count);
        if (!wait_for_user(handle, &moments)) return false;
    }
    return fail("not measured", "no reason given");
}

static bool print_spectrum(const SPM_REFLECTION* points) {
    for (int32_t i = 0; i < reflections; ++i) {
        printf("%d nm %6.2f %%\n", points[i].wavelength, points[i].value);
    }
    return true;
}

static bool measure_spectrum(SPM_HANDLE handle) {
    SPM_REFLECTION points[reflections];
    SPM_SPECTRUM spectrum = {reflections, points};
    int moments = 0;
    puts("Place the instrument on a patch and press the button within a minute.");
    for (int32_t count = 1; spm.readSpectrum(handle, &spectrum, &count); count = 1) {
        if (count > 0) return print_spectrum(points);
        if (!wait_for_user(handle, &moments)) return false;
    }
    return fail("not measured", "no reason given");
}

int main(int argc, char** argv) {
    if (argc != 2) return fail("usage", "measure MODULE"), 1;
    if (!load_module(path_argument(argv, 1))) return 1;
    const SPM_HANDLE handle = spm.create();
    SPM_SUBSCRIPTION* const subscription = spm.subscribe(handle, keep_reason, NULL);
    const bool done = (spm.open(handle, "USB") || fail("not opened", "no instrument was found")) && calibrate(handle) &&
                      measure_row(handle) && measure_spectrum(handle);
    spm.close(handle);
    spm.unsubscribe(subscription);
    spm.destroy(handle);
    return done ? 0 : 1;
}

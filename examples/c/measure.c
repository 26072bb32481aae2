/* Measures a row of six patches and the spectrum of one more.
   Use: measure MODULE, the path of the spectrophotometer module. Exit status 0 when all was measured. */

#include <SPM.h>
#include <stdio.h>
#include <string.h>

#ifdef _WIN32
#include <windows.h>

/* Only the module's folder and the system's are searched for the SDK library. */
static void* load(const char* path) {
    char full[MAX_PATH];
    if (GetFullPathNameA(path, sizeof full, full, NULL) == 0) return NULL;
    return LoadLibraryExA(full, NULL, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
}

static void find(void* library, const char* name, void* function) {
    FARPROC address = GetProcAddress(library, name);
    memcpy(function, &address, sizeof address);
}

static void wait_a_moment(void) {
    Sleep(50);
}
#else
#include <dlfcn.h>
#include <time.h>

static void* load(const char* path) {
    return dlopen(path, RTLD_NOW | RTLD_LOCAL);
}

static void find(void* library, const char* name, void* function) {
    void* address = dlsym(library, name);
    memcpy(function, &address, sizeof address);
}

static void wait_a_moment(void) {
    const struct timespec moment = {0, 50000000};
    nanosleep(&moment, NULL);
}
#endif

enum { patches = 6, reflections = 36 };

static SPM_create_t create;
static SPM_destroy_t destroy;
static SPM_open_t open_instrument;
static SPM_close_t close_instrument;
static SPM_isOpened_t is_opened;
static SPM_calibrate_t calibrate;
static SPM_read_t read_patches;
static SPM_readSpectrum_t read_spectra;

static int find_functions(void* library) {
    find(library, "SPM_create", &create);
    find(library, "SPM_destroy", &destroy);
    find(library, "SPM_open", &open_instrument);
    find(library, "SPM_close", &close_instrument);
    find(library, "SPM_isOpened", &is_opened);
    find(library, "SPM_calibrate", &calibrate);
    find(library, "SPM_read", &read_patches);
    find(library, "SPM_readSpectrum", &read_spectra);
    return create && destroy && open_instrument && close_instrument && is_opened && calibrate && read_patches &&
           read_spectra;
}

static int fail(const char* what) {
    fprintf(stderr, "measure: %s\n", what);
    return 0;
}

static int do_calibrate(SPM_HANDLE handle) {
    SPM_CALIBRATION dialogue = {0, 0, 0, 0, SPM_STEP_BEGIN};
    calibrate(handle, &dialogue);
    puts("Place the instrument on its white reference and press the button.");
    while (dialogue.step == SPM_STEP_CONTINUE) {
        wait_a_moment();
        calibrate(handle, &dialogue);
    }
    return dialogue.step == SPM_STEP_DONE || fail("calibrating failed");
}

static int measure_row(SPM_HANDLE handle) {
    SPM_LAB values[patches];
    int32_t count = 0;
    int32_t i;
    puts("Press the button and slide the instrument along the row.");
    while (count == 0) {
        wait_a_moment();
        count = patches;
        if (!read_patches(handle, values, &count)) return fail("measuring the row failed");
        if (count == 0 && !is_opened(handle)) return fail("the connection was lost");
    }
    for (i = 0; i < count; ++i) {
        printf("L* %6.2f  a* %6.2f  b* %6.2f\n", values[i].L, values[i].a, values[i].b);
    }
    return count == patches || fail("not all patches of the row were found");
}

static int measure_spectrum(SPM_HANDLE handle) {
    SPM_REFLECTION points[reflections];
    SPM_SPECTRUM spectrum = {reflections, points};
    int32_t count = 0;
    int32_t i;
    puts("Place the instrument on a patch and press the button.");
    while (count == 0) {
        wait_a_moment();
        count = 1;
        if (!read_spectra(handle, &spectrum, &count)) return fail("measuring the spectrum failed");
        if (count == 0 && !is_opened(handle)) return fail("the connection was lost");
    }
    for (i = 0; i < reflections; ++i) {
        printf("%d nm %6.2f %%\n", points[i].wavelength, points[i].value);
    }
    return 1;
}

static int measure(SPM_HANDLE handle) {
    int done;
    if (!open_instrument(handle, "USB")) return fail("the instrument could not be opened; is it connected?");
    done = do_calibrate(handle) && measure_row(handle) && measure_spectrum(handle);
    close_instrument(handle);
    return done;
}

int main(int argc, char** argv) {
    void* library = argc == 2 ? load(argv[1]) : NULL;
    SPM_HANDLE handle;
    int done;
    if (library == NULL) return !fail("use: measure MODULE; the SDK library must lie beside the module");
    if (!find_functions(library)) return !fail("the file is no spectrophotometer module");
    handle = create();
    if (handle == NULL) return !fail("out of memory");
    done = measure(handle);
    destroy(handle);
    return !done;
}

/* A host in C and C++ as Visual C++ builds it, but without a C runtime. It calls all functions of the module and the
   listener library. Its exit status is 0, or the line of the check that failed. */

#include <SPM_listener.h>

#define EXPECT(condition)                                                                                              \
    if (!(condition)) return __LINE__

/* The linker requires this of programs that use floating point; the C runtime would define it. */
#ifdef __cplusplus
extern "C"
#endif
    int _fltused = 0;

static void count_errors(void* context, int32_t level, int32_t module_number, int32_t error_number, const char* text,
                         const char* detail) {
    *(int32_t*)context += level == 0 && module_number == 7 && error_number > 0 && text[0] != '\0' && detail[0] == '\0';
}

/* Records that are passed by value and by pointer. */
static int check_records(SPM_HANDLE handle) {
    static const SPM_OPTIONS options = {1, 2, 0};
    const SPM_OPTION_MASKS masks = SPM_getOptionMasks(handle);
    const SPM_STATUS status = SPM_getStatus(handle);
    char text = 'x';
    SPM_VERSION version = {0, {1, &text}};
    EXPECT(SPM_getVersion(&version) > 0 && version.version == SPM_getVersion(NULL) && text == '\0');
    SPM_getType(&version.type);
    EXPECT(SPM_getMinorVersion() < 100);
    EXPECT(masks.apertureMask == 0 && masks.modeMask == 3 && masks.referenceMask == 1);
    EXPECT(status.aperture == 1 && status.illumination == 1 && status.auxiliary == 0);
    SPM_setOptions(handle, &options);
    return 0;
}

static int calibrate(SPM_HANDLE handle) {
    SPM_CALIBRATION calibration;
    calibration.step = SPM_STEP_BEGIN;
    EXPECT(!SPM_isCalibrated(handle));
    SPM_calibrate(handle, &calibration);
    EXPECT(calibration.step == SPM_STEP_CONTINUE && calibration.reference == 1);
    while (calibration.step == SPM_STEP_CONTINUE) {
        SPM_calibrate(handle, &calibration);
    }
    EXPECT(calibration.step == SPM_STEP_DONE && SPM_isCalibrated(handle));
    return 0;
}

static int measure(SPM_HANDLE handle) {
    SPM_LAB values[3];
    SPM_REFLECTION points[36];
    SPM_SPECTRUM spectrum = {SPM_getNumberOfReflections(handle), points};
    int32_t count;
    EXPECT(spectrum.numberOfReflections == 36);
    do {
        count = 3;
        EXPECT(SPM_read(handle, values, &count));
    } while (count == 0);
    EXPECT(count == 3 && values[0].L > 36 && values[0].L < 37 && values[2].b < -10);
    do {
        count = 1;
        EXPECT(SPM_readSpectrum(handle, &spectrum, &count));
    } while (count == 0);
    EXPECT(points[0].wavelength == 380 && points[35].wavelength == 730 && points[35].value > 0);
    return 0;
}

int host(void) {
    int32_t errors = 0;
    int32_t count = 1;
    SPM_LAB value;
    const SPM_HANDLE handle = SPM_create();
    SPM_SUBSCRIPTION* const subscription = SPM_subscribe(handle, count_errors, &errors);
    EXPECT(subscription != NULL && SPM_open(handle, "USB") && SPM_isOpened(handle));
    while (SPM_read(handle, &value, &count) && count == 0) {
        count = 1;
    }
    EXPECT(count == 0 && errors == 1); /* not calibrated */
    int line = check_records(handle);
    if (line == 0) line = calibrate(handle);
    if (line == 0) line = measure(handle);
    EXPECT(line != 0 || errors == 1);
    SPM_close(handle);
    EXPECT(!SPM_isOpened(handle));
    SPM_unsubscribe(subscription);
    SPM_destroy(handle);
    return line;
}

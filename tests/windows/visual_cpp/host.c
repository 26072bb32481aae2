/* A host in C and C++ as Visual C++ builds it, but without a C runtime. It calls all functions of the module and the
   listener library, while the simulated button is always pressed. Its exit status is 0, or the line of the check that
   failed. */

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

/* Records are passed by value and by pointer. */
static int describe(SPM_HANDLE handle) {
    static const SPM_OPTIONS options = {1, 2, 0};
    const SPM_OPTION_MASKS masks = SPM_getOptionMasks(handle);
    const SPM_STATUS status = SPM_getStatus(handle);
    char text = 'x';
    SPM_VERSION version = {0, {1, &text}};
    EXPECT(SPM_getVersion(&version) > 0 && version.version == SPM_getVersion(NULL) && text == '\0');
    SPM_getType(&version.type);
    EXPECT(SPM_getMinorVersion() < 100);
    EXPECT(masks.modeMask == 3 && masks.referenceMask == 1 && status.aperture == 1 && status.illumination == 1);
    SPM_setOptions(handle, &options);
    return 0;
}

static int measure(SPM_HANDLE handle) {
    SPM_CALIBRATION calibration;
    SPM_LAB values[3];
    SPM_REFLECTION points[36];
    SPM_SPECTRUM spectrum = {SPM_getNumberOfReflections(handle), points};
    int32_t count = 3;
    EXPECT(!SPM_read(handle, values, &count) && count == 0); /* not calibrated */
    calibration.step = SPM_STEP_BEGIN;
    SPM_calibrate(handle, &calibration);
    EXPECT(calibration.step == SPM_STEP_CONTINUE && calibration.reference == 1);
    SPM_calibrate(handle, &calibration);
    EXPECT(calibration.step == SPM_STEP_DONE && SPM_isCalibrated(handle));
    count = 3;
    EXPECT(SPM_read(handle, values, &count) && count == 3 && values[0].L > 36 && values[2].b < -10);
    count = 1;
    EXPECT(SPM_readSpectrum(handle, &spectrum, &count) && points[35].wavelength == 730 && points[35].value > 0);
    return 0;
}

int host(void) {
    int32_t errors = 0;
    const SPM_HANDLE handle = SPM_create();
    SPM_SUBSCRIPTION* const subscription = SPM_subscribe(handle, count_errors, &errors);
    EXPECT(subscription != NULL && SPM_open(handle, "USB") && SPM_isOpened(handle));
    int line = describe(handle);
    if (line == 0) line = measure(handle);
    EXPECT(line != 0 || errors == 1);
    SPM_close(handle);
    EXPECT(!SPM_isOpened(handle));
    SPM_unsubscribe(subscription);
    SPM_destroy(handle);
    return line;
}

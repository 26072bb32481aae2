/* A host as Visual C++ builds it, in C and in C++, without a C runtime: it calls the sixteen functions and hears why a
   call failed. Its exit status is 0, or the number of the line that found something wrong. */

#include <SPM_listener.h>

#define EXPECT(condition)                                                                                              \
    if (!(condition)) return __LINE__

enum { reflections = 36, row = 3 };

#ifdef __cplusplus
extern "C" {
#endif
extern int _fltused;
int host(void);
#ifdef __cplusplus
}
#endif

/* The C runtime defines this for programs that use floating point. */
int _fltused = 0;

static void count_errors(void* context, int32_t level, int32_t module_number, int32_t error_number, const char* text,
                         const char* detail) {
    *(int32_t*)context += level == 0 && module_number == 7 && error_number > 0 && text[0] != '\0' && detail[0] == '\0';
}

static int check_version(void) {
    static char text[4];
    SPM_TEXT type;
    SPM_VERSION version;
    type.size = sizeof text;
    type.text = text;
    version.type = type;
    text[0] = 'x';
    SPM_getType(&type);
    EXPECT(text[0] == '\0');
    EXPECT(SPM_getVersion(&version) == 3 && version.version == 3);
    EXPECT(SPM_getMinorVersion() == 0);
    return 0;
}

static int check_options(SPM_HANDLE handle) {
    static const SPM_OPTIONS options = {1, 2, 0};
    const SPM_OPTION_MASKS masks = SPM_getOptionMasks(handle);
    const SPM_STATUS status = SPM_getStatus(handle);
    EXPECT(masks.apertureMask == 0 && masks.illuminationMask == 0 && masks.auxiliaryMask == 0);
    EXPECT(masks.modeMask == 3 && masks.referenceMask == 1);
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

/* Polls until the simulated button is pressed. */
static bool read(SPM_HANDLE handle, SPM_LAB* values, int32_t* count, int32_t patches) {
    do {
        *count = patches;
        if (!SPM_read(handle, values, count)) return false;
    } while (*count == 0);
    return true;
}

static int measure(SPM_HANDLE handle) {
    static SPM_LAB values[row];
    static SPM_REFLECTION points[reflections];
    SPM_SPECTRUM spectrum;
    int32_t count;
    EXPECT(read(handle, values, &count, row) && count == row);
    EXPECT(values[0].L > 36 && values[0].L < 37 && values[2].b < -10);
    spectrum.numberOfReflections = SPM_getNumberOfReflections(handle);
    spectrum.reflections = points;
    EXPECT(spectrum.numberOfReflections == reflections);
    do {
        count = 1;
        EXPECT(SPM_readSpectrum(handle, &spectrum, &count));
    } while (count == 0);
    EXPECT(points[0].wavelength == 380 && points[35].wavelength == 730 && points[35].value > 0);
    return 0;
}

static int use(SPM_HANDLE handle) {
    int32_t errors = 0;
    int32_t count;
    SPM_LAB value;
    int line;
    SPM_SUBSCRIPTION* const subscription = SPM_subscribe(handle, count_errors, &errors);
    EXPECT(subscription != NULL);
    EXPECT(SPM_open(handle, "USB") && SPM_isOpened(handle));
    EXPECT(!read(handle, &value, &count, 1) && count == 0 && errors == 1); /* not calibrated */
    if ((line = check_options(handle)) != 0 || (line = calibrate(handle)) != 0 || (line = measure(handle)) != 0) {
        return line;
    }
    EXPECT(errors == 1);
    SPM_close(handle);
    EXPECT(!SPM_isOpened(handle));
    SPM_unsubscribe(subscription);
    return 0;
}

int host(void) {
    const SPM_HANDLE handle = SPM_create();
    int line = check_version();
    EXPECT(handle != NULL);
    if (line == 0) line = use(handle);
    SPM_destroy(handle);
    return line;
}

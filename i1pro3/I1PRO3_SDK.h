#pragma once

// The functions of the vendor's i1Pro 3 library that the module calls. Unless noted otherwise, a function returns 0 on
// success; after a failure, the global options "LastErrorText" and "LastErrorNumber" describe it. Texts are
// NUL-terminated single-byte strings.

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** A connected instrument. */
typedef void* I1PRO3_DeviceHandle;

enum {
    I1PRO3_NOT_CALIBRATED = 13,        /**< result of I1PRO3_TriggerMeasurement */
    I1PRO3_BUTTON_NOT_PRESSED = 1001,  /**< result of I1PRO3_GetButtonStatusD */
    I1PRO3_NUMBER_OF_REFLECTIONS = 36, /**< number of values in a spectrum */
    I1PRO3_FIRST_WAVELENGTH = 380,     /**< of a spectrum, in nm */
    I1PRO3_WAVELENGTH_STEP = 10        /**< of a spectrum, in nm; the last wavelength is 730 nm */
};

/** Lists the connected instruments. The library owns the list; its lifetime is not documented, so read it before the
 * next call. If there is no instrument, `count` is 0 and `list` is unspecified. The handles stay valid. */
int32_t I1PRO3_GetDevices(I1PRO3_DeviceHandle** list, uint32_t* count);

int32_t I1PRO3_OpenDevice(I1PRO3_DeviceHandle device);

/** Closes an instrument. It may already be closed. */
int32_t I1PRO3_CloseDevice(I1PRO3_DeviceHandle device);

/** Returns the connection status. Its values are not documented. */
int32_t I1PRO3_GetConnectionStatus(I1PRO3_DeviceHandle device);

/** Sets an option, which keeps its value until it is set again. */
int32_t I1PRO3_SetOption(I1PRO3_DeviceHandle device, const char* key, const char* value);

/** Reads an option as a text. `size` is the buffer's size in bytes on input; its value on output is not documented, so
 * rely on the terminating NUL, or the end of the buffer if there is none. */
int32_t I1PRO3_GetOption(I1PRO3_DeviceHandle device, const char* key, char* buffer, uint32_t* size);

/** Sets an option of the library itself, such as "Reset" = "All". */
int32_t I1PRO3_SetGlobalOption(const char* key, const char* value);

/** Reads an option of the library itself as a text; `size` as for I1PRO3_GetOption. */
int32_t I1PRO3_GetGlobalOption(const char* key, char* buffer, uint32_t* size);

/** Returns I1PRO3_BUTTON_NOT_PRESSED until the button is pressed; any other result means that it has been pressed. */
int32_t I1PRO3_GetButtonStatusD(I1PRO3_DeviceHandle device);

/** Calibrates. The instrument must be on its white reference. */
int32_t I1PRO3_Calibrate(I1PRO3_DeviceHandle device);

/** Measures in the mode set by the option "MeasurementMode". Returns I1PRO3_NOT_CALIBRATED if there is no calibration.
 */
int32_t I1PRO3_TriggerMeasurement(I1PRO3_DeviceHandle device);

/** Returns the number of samples found by the last scan; negative on failure. */
int32_t I1PRO3_GetNumberOfAvailableSamples(I1PRO3_DeviceHandle device);

/** Reads a sample's three values in the colour space set by the options. */
int32_t I1PRO3_GetTriStimulus(I1PRO3_DeviceHandle device, float* values, int32_t sample);

/** Reads a sample's I1PRO3_NUMBER_OF_REFLECTIONS reflectance factors; 1 is a perfect diffuser. */
int32_t I1PRO3_GetSpectrum(I1PRO3_DeviceHandle device, float* values, int32_t sample);

#ifdef __cplusplus
}
#endif

#pragma once

// The functions of the vendor's i1Pro 3 library that the module calls. Each answers a signed 32-bit result; unless
// said otherwise, 0 is success, and the global options "LastErrorText" and "LastErrorNumber" tell of the last failure.
// Texts are NUL-terminated single-byte texts.

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** A connected instrument. */
typedef void* I1PRO3_DeviceHandle;

enum {
    I1PRO3_NOT_CALIBRATED = 13,        /**< answer of I1PRO3_TriggerMeasurement */
    I1PRO3_BUTTON_NOT_PRESSED = 1001,  /**< answer of I1PRO3_GetButtonStatusD */
    I1PRO3_NUMBER_OF_REFLECTIONS = 36, /**< values of a spectrum */
    I1PRO3_FIRST_WAVELENGTH = 380,     /**< of a spectrum, in nm */
    I1PRO3_WAVELENGTH_STEP = 10        /**< in nm; the last wavelength is 730 nm */
};

/** Lists the instruments. The list stays the library's, which doesn't say for how long: read it before the next call.
 *  Without an instrument the count is 0; whether there is a list then is not said either. The handles stay valid. */
int32_t I1PRO3_GetDevices(I1PRO3_DeviceHandle** devices, uint32_t* count);

int32_t I1PRO3_OpenDevice(I1PRO3_DeviceHandle device);

/** Closes an instrument, also one that is closed. */
int32_t I1PRO3_CloseDevice(I1PRO3_DeviceHandle device);

int32_t I1PRO3_GetConnectionStatus(I1PRO3_DeviceHandle device);

/** Sets an option; it stays in force until it is set again. */
int32_t I1PRO3_SetOption(I1PRO3_DeviceHandle device, const char* key, const char* value);

/** Reads an option as a text. `size` is the buffer's size in bytes on entry; what it holds afterwards is not
 * documented, so the text's end is its NUL, or the buffer's end where there is none. */
int32_t I1PRO3_GetOption(I1PRO3_DeviceHandle device, const char* key, char* buffer, uint32_t* size);

/** Sets an option of the library itself: "Reset" = "All". */
int32_t I1PRO3_SetGlobalOption(const char* key, const char* value);

/** Reads an option of the library itself as a text; `size` as for I1PRO3_GetOption. */
int32_t I1PRO3_GetGlobalOption(const char* key, char* buffer, uint32_t* size);

/** Whether the button has been pressed: any answer but I1PRO3_BUTTON_NOT_PRESSED says that it has. */
int32_t I1PRO3_GetButtonStatusD(I1PRO3_DeviceHandle device);

/** Calibrates on the white reference, on which the instrument must stand. */
int32_t I1PRO3_Calibrate(I1PRO3_DeviceHandle device);

/** Measures in the mode that the option "MeasurementMode" names. Answers I1PRO3_NOT_CALIBRATED without a calibration.
 */
int32_t I1PRO3_TriggerMeasurement(I1PRO3_DeviceHandle device);

/** The number of samples that the last scan found. A negative number is a failure. */
int32_t I1PRO3_GetNumberOfAvailableSamples(I1PRO3_DeviceHandle device);

/** Reads a sample's three values in the colour space that the options set. */
int32_t I1PRO3_GetTriStimulus(I1PRO3_DeviceHandle device, float* tristimulus, int32_t sample);

/** Reads a sample's I1PRO3_NUMBER_OF_REFLECTIONS reflectance factors, 1 for a perfect diffuser. */
int32_t I1PRO3_GetSpectrum(I1PRO3_DeviceHandle device, float* spectrum, int32_t sample);

#ifdef __cplusplus
}
#endif

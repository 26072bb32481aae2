/**
 * @file SPM.h
 * The spectrophotometer module: sixteen functions to measure colour with an i1Pro 3.
 *
 * Object life cycle
 *   SPM_create creates an object; SPM_open connects the instrument; SPM_calibrate, called repeatedly, calibrates it on
 *   its white reference; SPM_read and SPM_readSpectrum measure; SPM_close disconnects; SPM_destroy destroys the object.
 *   The order of calls is not enforced: a function called at the wrong time does nothing and returns the result that
 *   its description gives for that case.
 *
 * Polling
 *   The module never waits for the user. SPM_calibrate, SPM_read and SPM_readSpectrum check the instrument's button
 *   once and return. Until the user has pressed it, they report that nothing was measured, and the host calls again. A
 *   call blocks only while the instrument opens, calibrates or measures.
 *
 * Errors
 *   No function throws or terminates the process. On failure, a function returns its failure result, and the object
 *   stays usable. The reason is logged, with the instrument's own error text, if SPM_open, SPM_calibrate, SPM_read,
 *   SPM_readSpectrum or SPM_destroy fails. Nothing is logged if SPM_open finds no instrument or can't close an earlier
 *   connection, if another function fails, and usually if the vendor's library throws an exception.
 *   - Hosts in any language can attach a callback with the library spm_i1pro3_listener (SPM_listener.h).
 *   - C++ hosts built with the module's compiler can attach an ICAPLoggingListener through the interface behind the
 *     handle (IScmSPM.h).
 *   - With the setting "Logging", an object also appends its messages to a file beside the module, as long as a
 *     listener is attached (docs/settings.md).
 *
 *   SPM_open first closes the object's earlier connection, and returns false without a message as long as that fails. A
 *   host therefore recovers with a new object: SPM_close and SPM_destroy, then SPM_create, SPM_open and a calibration.
 *   If SPM_open of a new object returns false without a message, no instrument was found.
 *
 *   Passing null as the handle, or for a record, an array, a count or a text, is a failure, too, unless the function's
 *   description allows it; it is not logged, and the count, if any, is set to 0. A destroyed handle can't be detected
 *   and must not be passed.
 *
 * Ownership
 *   The host owns the object from SPM_create to SPM_destroy, and all memory that it passes. The module writes to that
 *   memory only during the call and keeps no pointer to it.
 *
 * Threads
 *   The module creates no threads and takes no locks; it waits only inside the vendor's library. Calls on one object
 *   must not overlap.
 *
 * Several objects
 *   Use one object at a time. Objects share the vendor's library and its instruments: SPM_close of one object closes
 *   the instrument that another has open, and SPM_close and SPM_destroy of one reset the library for all.
 *
 *   A process has one SDK library. Once the module was loaded with a simulated one, the real module gets simulated
 *   values, too, until the process ends. Only a simulated SDK library exports I1PRO3_SimulatorDescription.
 *
 * Texts
 *   NUL-terminated single-byte strings in the code page of the process.
 *
 * Colour
 *   CIELab for illuminant D65 and the CIE 1964 10 degree standard observer. Spectra are reflectances in percent, from
 *   380 nm to 730 nm in steps of 10 nm.
 *
 * Binary interface
 *   Plain undecorated C functions of the 64-bit platform. Records are little-endian; SPM_TEXT, SPM_VERSION and
 *   SPM_SPECTRUM are packed, so their pointers are not aligned. A bool is one byte, 0 or 1.
 *
 * Each function has a pointer type, SPM_..._t, for hosts that load the module at run time.
 */
#ifndef SPM_H
#define SPM_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * A module object. Opaque to C. C++ hosts built with the module's compiler can use it as the interface in IScmSPM.h.
 */
typedef struct IScmSPM* SPM_HANDLE;

/** A selection of options, by value. The i1Pro 3 has aperture 1 (4.5 mm), illuminations 1 (UV included) and 2 (UV
 *  excluded), and no auxiliary options (0). 12 bytes. */
typedef struct SPM_OPTIONS {
    uint32_t aperture;     /**< 1 */
    uint32_t illumination; /**< 1 or 2 */
    uint32_t auxiliary;    /**< 0 */
} SPM_OPTIONS;

/** The instrument's current options, with values as in SPM_OPTIONS; all 0 while no instrument is open. 12 bytes. */
typedef struct SPM_STATUS {
    uint32_t aperture;     /**< 1 */
    uint32_t illumination; /**< 1 */
    uint32_t auxiliary;    /**< 0 */
} SPM_STATUS;

/** The options that the host may choose from, as bit masks of their values. 20 bytes. */
typedef struct SPM_OPTION_MASKS {
    uint32_t apertureMask;     /**< 0: no choice */
    uint32_t illuminationMask; /**< 0: no choice */
    uint32_t auxiliaryMask;    /**< 0: no choice */
    uint32_t modeMask;         /**< supported measuring modes: 3 for the i1Pro 3, 1 spot and 2 scan */
    uint32_t referenceMask;    /**< supported calibration references: 1 for the i1Pro 3, the white reference */
} SPM_OPTION_MASKS;

/** Values of SPM_CALIBRATION's `step`. */
enum {
    SPM_STEP_BEGIN = 0,    /**< request: begin a calibration */
    SPM_STEP_CONTINUE = 1, /**< request: check the button; reply: waiting for the button, call again */
    SPM_STEP_NOTHING = 3,  /**< reply: nothing was calibrated */
    SPM_STEP_DONE = 4      /**< reply: calibrated; as a request: no effect, and repeated while an instrument is open */
};

/** A request for a calibration step, overwritten with the reply. 20 bytes. */
typedef struct SPM_CALIBRATION {
    uint32_t aperture;     /**< ignored by the i1Pro 3; 0 in replies */
    uint32_t illumination; /**< ignored by the i1Pro 3; 0 in replies */
    uint32_t auxiliary;    /**< ignored by the i1Pro 3; 0 in replies */
    uint32_t reference;    /**< reply: the reference to place the instrument on; 1 the white reference, 0 none */
    uint32_t step;         /**< SPM_STEP_... */
} SPM_CALIBRATION;

/** The CIELab values of one patch. 12 bytes. */
typedef struct SPM_LAB {
    float L; /**< lightness, 0 to 100 */
    float a; /**< green (negative) to red (positive) */
    float b; /**< blue (negative) to yellow (positive) */
} SPM_LAB;

/** One point of a reflectance spectrum. 8 bytes. */
typedef struct SPM_REFLECTION {
    int32_t wavelength; /**< in nanometres */
    float value;        /**< reflectance in percent; 100 for a perfect diffuser */
} SPM_REFLECTION;

#pragma pack(push, 1)

/** A host's array for the reflectance spectrum of one patch. The module fills the array but never changes this record.
 * 12 bytes, packed. */
typedef struct SPM_SPECTRUM {
    int32_t numberOfReflections; /**< size of the array in entries; normally SPM_getNumberOfReflections */
    SPM_REFLECTION* reflections; /**< the array */
} SPM_SPECTRUM;

/** A host's text buffer. 12 bytes, packed. */
typedef struct SPM_TEXT {
    int32_t size; /**< size of the buffer in bytes, including the terminating NUL */
    char* text;   /**< the buffer */
} SPM_TEXT;

/** The module's version and type. 16 bytes, packed. */
typedef struct SPM_VERSION {
    uint32_t version; /**< the version, see SPM_getVersion */
    SPM_TEXT type;    /**< the buffer for the type, see SPM_getType */
} SPM_VERSION;

#pragma pack(pop)

/**
 * Returns the module's version: the fourth component of its file version. Needs no object.
 * @param version  receives the version and the type (see SPM_getType); may be null
 * @return the version; 0 if the version resource of the module's file can't be read
 */
uint32_t SPM_getVersion(SPM_VERSION* version);

/**
 * Returns the module's minor version: the third component of its file version. Needs no object.
 * @return the minor version; also 0 if the version resource of the module's file can't be read
 */
uint32_t SPM_getMinorVersion(void);

/**
 * Reads the module's type: the text "Comments" of its version resource. Needs no object. This module's resource has no
 * such text, so the type is empty.
 * @param type  the buffer. If `text` is null or `size` below 1, nothing is written. Without a type, only the first byte
 *              is set to NUL. Otherwise the whole buffer is filled: with the type, truncated to `size` - 1 characters,
 *              and then NULs
 */
void SPM_getType(SPM_TEXT* type);

/**
 * Creates a module object. Reads the settings, and opens the log file if logging is on. Does not access the instrument.
 * @return the object's handle; null if out of memory
 */
SPM_HANDLE SPM_create(void);

/**
 * Destroys a module object: resets the vendor's library, which all objects of the process share, and closes the log
 * file. Does not close the instrument; call SPM_close first.
 * @param handle  ignored if null
 */
void SPM_destroy(SPM_HANDLE handle);

/**
 * Returns the options that the host may choose from. Needs no open instrument.
 * @return the masks: 0, 0, 0, 3, 1 for the i1Pro 3; all 0 on failure
 */
SPM_OPTION_MASKS SPM_getOptionMasks(SPM_HANDLE handle);

/**
 * Selects options. An unknown value leaves its option unchanged. SPM_open replaces the selection with the instrument's
 * current options; SPM_close clears it. The selection has no effect on measurements with the i1Pro 3.
 * @param options  the options to select; not changed
 */
void SPM_setOptions(SPM_HANDLE handle, const SPM_OPTIONS* options);

/**
 * Connects the first instrument that the vendor's library finds, and sets it to CIELab, D65 and 10 degrees. If the
 * object already has a connection, it is closed first, which also discards its calibration.
 * @param device  name of the device connection, "USB"; may be null. Only logged; it does not select an instrument
 * @return true if connected; false if there is no instrument, an earlier connection can't be closed (see "Errors"), or
 *         a step failed. After false, the object has no connection, unless a listener threw: then it may have one
 */
bool SPM_open(SPM_HANDLE handle, const char* device);

/**
 * Disconnects the instrument and resets the vendor's library, which all objects of the process share. Does nothing if
 * the object has never found an instrument.
 */
void SPM_close(SPM_HANDLE handle);

/**
 * Returns whether the object has a connection. Does not detect that the instrument was unplugged.
 * @return true if connected; false if not, and on failure
 */
bool SPM_isOpened(SPM_HANDLE handle);

/**
 * Returns the instrument's current options.
 * @return 1, 1, 0 for an open i1Pro 3; all 0 if no instrument is open, and on failure
 */
SPM_STATUS SPM_getStatus(SPM_HANDLE handle);

/**
 * Performs one step of a calibration.
 *
 * Begin with SPM_STEP_BEGIN. While the reply is SPM_STEP_CONTINUE, ask the user to place the instrument on the
 * reference in the reply and to press its button, and call again with SPM_STEP_CONTINUE. Its reply SPM_STEP_DONE means
 * that the instrument is calibrated. SPM_STEP_NOTHING means that nothing was calibrated: no instrument is open, no
 * calibration was begun, the step is unknown, or calibrating failed. Begin again before measuring. SPM_STEP_CONTINUE
 * after a finished calibration doesn't calibrate again: its reply is SPM_STEP_DONE until the next SPM_STEP_BEGIN.
 * @param calibration  the request, overwritten with the reply; unchanged if there is no reply, for instance because
 *                     `handle` is null or a listener threw
 */
void SPM_calibrate(SPM_HANDLE handle, SPM_CALIBRATION* calibration);

/**
 * Returns whether the instrument is calibrated. Each call takes a spot measurement to find out.
 * @return true if calibrated, and also if the measurement fails for a reason other than a missing calibration; false if
 *         not calibrated, if no instrument is open, and if the measurement can't be set up
 */
bool SPM_isCalibrated(SPM_HANDLE handle);

/**
 * Returns the number of entries of a spectrum. Needs no open instrument.
 * @return 36 for the i1Pro 3; 0 on failure
 */
int32_t SPM_getNumberOfReflections(SPM_HANDLE handle);

/**
 * Measures the CIELab values of one patch (spot) or of a row of patches (scan), if the user has pressed the button.
 *
 * If the function returns true with `count` 0, nothing was measured: the button was not pressed, no instrument is open,
 * the count was below 1, or the scan found no patch. A scan that finds fewer patches than requested returns those.
 * @param values  array of `count` records, of which only the measured ones are written; may be null if `count` is below
 *                1. With the button pressed, null is a failure, which is logged
 * @param count   in: number of patches, 1 for a spot, 2 or more for a scan; out: number of patches measured
 * @return true on success; false on failure, with `count` set to the number of patches measured before it
 */
bool SPM_read(SPM_HANDLE handle, SPM_LAB* values, int32_t* count);

/**
 * Measures the reflectance spectra of one patch (spot) or of a row of patches (scan), if the user has pressed the
 * button. Otherwise like SPM_read.
 *
 * Entry j of a spectrum is for the wavelength 380 + 10 * j nm. The first record's `numberOfReflections` must be
 * SPM_getNumberOfReflections; otherwise nothing is measured, and the function returns true with `count` 0. Each later
 * record receives as many entries as its own `numberOfReflections`, at least 0 and at most 36. If a record has a null
 * `reflections` but is to receive entries, the function fails.
 * @param spectra  array of `count` records, each with the array to fill
 * @param count    in: number of patches, 1 for a spot, 2 or more for a scan; out: number of patches measured
 * @return true on success; false on failure, with `count` set to the number of records filled before it
 */
bool SPM_readSpectrum(SPM_HANDLE handle, SPM_SPECTRUM* spectra, int32_t* count);

/* A pointer to the function of the same name, for hosts that load the module at run time. */
typedef uint32_t (*SPM_getVersion_t)(SPM_VERSION* version);
typedef uint32_t (*SPM_getMinorVersion_t)(void);
typedef void (*SPM_getType_t)(SPM_TEXT* type);
typedef SPM_HANDLE (*SPM_create_t)(void);
typedef void (*SPM_destroy_t)(SPM_HANDLE handle);
typedef SPM_OPTION_MASKS (*SPM_getOptionMasks_t)(SPM_HANDLE handle);
typedef void (*SPM_setOptions_t)(SPM_HANDLE handle, const SPM_OPTIONS* options);
typedef bool (*SPM_open_t)(SPM_HANDLE handle, const char* device);
typedef void (*SPM_close_t)(SPM_HANDLE handle);
typedef bool (*SPM_isOpened_t)(SPM_HANDLE handle);
typedef SPM_STATUS (*SPM_getStatus_t)(SPM_HANDLE handle);
typedef void (*SPM_calibrate_t)(SPM_HANDLE handle, SPM_CALIBRATION* calibration);
typedef bool (*SPM_isCalibrated_t)(SPM_HANDLE handle);
typedef int32_t (*SPM_getNumberOfReflections_t)(SPM_HANDLE handle);
typedef bool (*SPM_read_t)(SPM_HANDLE handle, SPM_LAB* values, int32_t* count);
typedef bool (*SPM_readSpectrum_t)(SPM_HANDLE handle, SPM_SPECTRUM* spectra, int32_t* count);

#ifdef __cplusplus
}
#endif

/** @cond checks of the binary interface, where the language has them */
#if defined(__cplusplus) && (__cplusplus >= 201103L || (defined(_MSC_VER) && _MSC_VER >= 1900))
#define SPM_STATIC_ASSERT static_assert
#define SPM_ALIGNOF alignof
#elif defined(__STDC_VERSION__) && __STDC_VERSION__ >= 201112L
#define SPM_STATIC_ASSERT _Static_assert
#define SPM_ALIGNOF _Alignof
#endif
#ifdef SPM_STATIC_ASSERT
SPM_STATIC_ASSERT(sizeof(bool) == 1, "a bool is one byte");
SPM_STATIC_ASSERT(sizeof(SPM_OPTIONS) == 12, "SPM_OPTIONS");
SPM_STATIC_ASSERT(offsetof(SPM_OPTIONS, illumination) == 4, "SPM_OPTIONS");
SPM_STATIC_ASSERT(offsetof(SPM_OPTIONS, auxiliary) == 8, "SPM_OPTIONS");
SPM_STATIC_ASSERT(sizeof(SPM_STATUS) == 12, "SPM_STATUS");
SPM_STATIC_ASSERT(offsetof(SPM_STATUS, illumination) == 4, "SPM_STATUS");
SPM_STATIC_ASSERT(offsetof(SPM_STATUS, auxiliary) == 8, "SPM_STATUS");
SPM_STATIC_ASSERT(sizeof(SPM_OPTION_MASKS) == 20, "SPM_OPTION_MASKS");
SPM_STATIC_ASSERT(offsetof(SPM_OPTION_MASKS, illuminationMask) == 4, "SPM_OPTION_MASKS");
SPM_STATIC_ASSERT(offsetof(SPM_OPTION_MASKS, auxiliaryMask) == 8, "SPM_OPTION_MASKS");
SPM_STATIC_ASSERT(offsetof(SPM_OPTION_MASKS, modeMask) == 12, "SPM_OPTION_MASKS");
SPM_STATIC_ASSERT(offsetof(SPM_OPTION_MASKS, referenceMask) == 16, "SPM_OPTION_MASKS");
SPM_STATIC_ASSERT(sizeof(SPM_CALIBRATION) == 20, "SPM_CALIBRATION");
SPM_STATIC_ASSERT(offsetof(SPM_CALIBRATION, illumination) == 4, "SPM_CALIBRATION");
SPM_STATIC_ASSERT(offsetof(SPM_CALIBRATION, auxiliary) == 8, "SPM_CALIBRATION");
SPM_STATIC_ASSERT(offsetof(SPM_CALIBRATION, reference) == 12, "SPM_CALIBRATION");
SPM_STATIC_ASSERT(offsetof(SPM_CALIBRATION, step) == 16, "SPM_CALIBRATION");
SPM_STATIC_ASSERT(sizeof(SPM_LAB) == 12, "SPM_LAB");
SPM_STATIC_ASSERT(offsetof(SPM_LAB, a) == 4, "SPM_LAB");
SPM_STATIC_ASSERT(offsetof(SPM_LAB, b) == 8, "SPM_LAB");
SPM_STATIC_ASSERT(sizeof(SPM_REFLECTION) == 8, "SPM_REFLECTION");
SPM_STATIC_ASSERT(offsetof(SPM_REFLECTION, value) == 4, "SPM_REFLECTION");
SPM_STATIC_ASSERT(sizeof(SPM_SPECTRUM) == 12 && SPM_ALIGNOF(SPM_SPECTRUM) == 1, "SPM_SPECTRUM");
SPM_STATIC_ASSERT(offsetof(SPM_SPECTRUM, reflections) == 4, "SPM_SPECTRUM");
SPM_STATIC_ASSERT(sizeof(SPM_TEXT) == 12 && SPM_ALIGNOF(SPM_TEXT) == 1, "SPM_TEXT");
SPM_STATIC_ASSERT(offsetof(SPM_TEXT, text) == 4, "SPM_TEXT");
SPM_STATIC_ASSERT(sizeof(SPM_VERSION) == 16 && SPM_ALIGNOF(SPM_VERSION) == 1, "SPM_VERSION");
SPM_STATIC_ASSERT(offsetof(SPM_VERSION, type) == 4, "SPM_VERSION");
#undef SPM_STATIC_ASSERT
#undef SPM_ALIGNOF
#endif
/** @endcond */

#endif

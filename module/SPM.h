/**
 * @file SPM.h
 * The spectrophotometer module: sixteen functions to measure colour with an i1Pro 3.
 *
 * The life of an object
 *   SPM_create makes it; SPM_open connects the instrument; SPM_calibrate, called in a dialogue, calibrates it on its
 *   white reference; SPM_read and SPM_readSpectrum measure; SPM_close disconnects; SPM_destroy ends it. No order is
 *   enforced: a function whose moment it is not answers as its description says, and does nothing.
 *
 * The module never waits for the user
 *   SPM_calibrate, SPM_read and SPM_readSpectrum look at the instrument's button once and return. While the user has
 *   not pressed it they report that nothing has been measured; the host calls again, as often and for as long as it
 *   likes. A call blocks only while the instrument works: opens, calibrates or measures.
 *
 * Failures
 *   No function throws or ends the process. A failure shows as the function's failure result, and the object stays
 *   usable. Why SPM_open, SPM_calibrate, SPM_read, SPM_readSpectrum or SPM_destroy failed is logged, with the
 *   instrument's own error text. Without a message stay: that no instrument was found, that an earlier connection could
 *   not be closed, and the failures of the other functions.
 *   - A host in any language attaches a callback with the library spm_i1pro3_listener (SPM_listener.h).
 *   - A C++ host of the module's compiler can attach an ICAPLoggingListener through the interface behind the
 *     handle (IScmSPM.h).
 *   - With the setting "Logging" (a REG_DWORD that is not 0 in the registry key
 *     `HKEY_LOCAL_MACHINE\SOFTWARE\Kestrova\SPM`, read by SPM_create), an object appends to the file with the module's
 *     name and the extension ".log" beside the module. Messages reach it only while a listener is attached, so that of
 *     an object without one it tells only the begin and the end.
 *
 *   A null handle, or a null pointer where a record, an array, a count or a text is expected, gives the failure result
 *   too, and a count, where there is one, becomes 0. A handle that was destroyed can't be told from a living one, and
 *   must not be passed.
 *
 * Ownership
 *   The host owns the object from SPM_create to SPM_destroy, and all memory that it passes. The module writes into it
 *   during the call only, and keeps no pointer.
 *
 * Threads
 *   The module has no threads, and waits for nobody but the vendor's library. Calls on one object must not overlap.
 *   Objects are independent, but share the vendor's library and with it the instrument.
 *
 * Texts
 *   NUL-terminated single-byte texts in the code page of the process.
 *
 * Colour
 *   CIELab for illuminant D65 and the CIE 1964 10 degree standard observer. Reflectance in percent, from 380 nm to
 *   730 nm in steps of 10 nm.
 *
 * Binary interface
 *   Plain undecorated C functions of the 64-bit platform. Records are little-endian; SPM_TEXT, SPM_VERSION and
 *   SPM_SPECTRUM are packed, so their pointers are not aligned. A bool is one byte, 0 or 1.
 *
 * Each function has a type for its pointer, SPM_..._t, for hosts that load the module at run time.
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
 * A module object. Opaque to C. In C++ it is the interface in IScmSPM.h, for hosts that are built with the
 * module's compiler.
 */
typedef struct IScmSPM* SPM_HANDLE;

/** Options by the values of their list entries. The i1Pro 3 has aperture 1 (4.5 mm), illuminations 1 (UV included) and
 *  2 (UV excluded), and no auxiliary entries (0). 12 bytes. */
typedef struct SPM_OPTIONS {
    uint32_t aperture;     /**< 1 */
    uint32_t illumination; /**< 1 or 2 */
    uint32_t auxiliary;    /**< 0 */
} SPM_OPTIONS;

/** The options in force on the instrument, as in SPM_OPTIONS; all 0 while no instrument is open. 12 bytes. */
typedef struct SPM_STATUS {
    uint32_t aperture;     /**< 1 */
    uint32_t illumination; /**< 1 */
    uint32_t auxiliary;    /**< 0 */
} SPM_STATUS;

/** What the host may choose between, as bit masks of entry values. 20 bytes. */
typedef struct SPM_OPTION_MASKS {
    uint32_t apertureMask;     /**< 0: no choice */
    uint32_t illuminationMask; /**< 0: no choice */
    uint32_t auxiliaryMask;    /**< 0: no choice */
    uint32_t modeMask;         /**< measuring modes that the device supports: 3 for the i1Pro 3 */
    uint32_t referenceMask;    /**< calibration references that the device supports: 1 for the i1Pro 3 */
} SPM_OPTION_MASKS;

/** Values of SPM_CALIBRATION's `step`. */
enum {
    SPM_STEP_BEGIN = 0,    /**< request: begin a calibration */
    SPM_STEP_CONTINUE = 1, /**< request: look at the button; answer: the user has to act, call again */
    SPM_STEP_NOTHING = 3,  /**< answer: nothing was calibrated */
    SPM_STEP_DONE = 4      /**< answer: calibrated; as a request it is answered with itself, and does nothing */
};

/** A request for a calibration step, overwritten with the answer. 20 bytes. */
typedef struct SPM_CALIBRATION {
    uint32_t aperture;     /**< not read by the i1Pro 3; 0 in answers */
    uint32_t illumination; /**< not read by the i1Pro 3; 0 in answers */
    uint32_t auxiliary;    /**< not read by the i1Pro 3; 0 in answers */
    uint32_t reference;    /**< answer: the reference to place the instrument on, 1 the white reference, 0 none */
    uint32_t step;         /**< SPM_STEP_... */
} SPM_CALIBRATION;

/** The CIELab values of one patch. 12 bytes. */
typedef struct SPM_LAB {
    float L; /**< lightness, 0 to 100 */
    float a; /**< green to red */
    float b; /**< blue to yellow */
} SPM_LAB;

/** One point of a reflectance spectrum. 8 bytes. */
typedef struct SPM_REFLECTION {
    int32_t wavelength; /**< in nanometres */
    float value;        /**< reflectance in percent: 100 for a perfect diffuser */
} SPM_REFLECTION;

#pragma pack(push, 1)

/** The reflectance spectrum of one patch: where the host wants it. Never changed by the module. 12 bytes, packed. */
typedef struct SPM_SPECTRUM {
    int32_t numberOfReflections; /**< entries that `reflections` has room for: SPM_getNumberOfReflections */
    SPM_REFLECTION* reflections; /**< the host's array */
} SPM_SPECTRUM;

/** A text buffer that the host lends. 12 bytes, packed. */
typedef struct SPM_TEXT {
    int32_t size; /**< of the buffer in bytes, with the terminating NUL */
    char* text;   /**< the buffer */
} SPM_TEXT;

/** The module's version and type. 16 bytes, packed. */
typedef struct SPM_VERSION {
    uint32_t version; /**< as SPM_getVersion returns it */
    SPM_TEXT type;    /**< as SPM_getType fills it */
} SPM_VERSION;

#pragma pack(pop)

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

/**
 * Reads the module's version: the fourth component of its file version. May be called before SPM_create.
 * @param version  filled with the version and the type text (see SPM_getType); may be null
 * @return the version; 0 when the module's file has no readable version resource
 */
uint32_t SPM_getVersion(SPM_VERSION* version);

/**
 * Reads the module's minor version: the third component of its file version. May be called before SPM_create.
 * @return the minor version; 0 also when the module's file has no readable version resource
 */
uint32_t SPM_getMinorVersion(void);

/**
 * Reads the module's type text, the "Comments" of its version resource. This module has none: the text is empty.
 * May be called before SPM_create.
 * @param type  the buffer. With `text` null or `size` below 1 nothing is written. Otherwise its first byte becomes NUL,
 *              and where there is a type text, the whole buffer is filled: at most `size` - 1 characters of the text,
 *              and NUL from there to the end
 */
void SPM_getType(SPM_TEXT* type);

/**
 * Makes a module object. Reads the settings, and opens the log file when logging is on; does not touch the instrument.
 * @return the object's handle, or null when memory ran out
 */
SPM_HANDLE SPM_create(void);

/**
 * Ends a module object: resets the vendor's library, which all objects of the process share, and closes the log file.
 * Does not close the instrument: SPM_close does.
 * @param handle  null is ignored
 */
void SPM_destroy(SPM_HANDLE handle);

/**
 * Reads which options the host may choose between. May be called before SPM_open.
 * @return the masks: 0, 0, 0, 3, 1 for the i1Pro 3; all 0 on failure
 */
SPM_OPTION_MASKS SPM_getOptionMasks(SPM_HANDLE handle);

/**
 * Selects options. A value that no entry has leaves its option as it was. SPM_open replaces the selection with the
 * options in force on the instrument, SPM_close clears it. The i1Pro 3 measures the same whatever is selected.
 * @param options  read only
 */
void SPM_setOptions(SPM_HANDLE handle, const SPM_OPTIONS* options);

/**
 * Connects the first instrument that the vendor's library finds and sets it to CIELab, D65, 10 degree. A connection
 * that the object already has is closed first, and its calibration with it.
 * @param device  name of the device connection, "USB"; it appears in the log and selects nothing
 * @return true when connected. False when there is no instrument or a step failed; the object then has no connection,
 *         unless `device` was null, which changes nothing, or a listener threw
 */
bool SPM_open(SPM_HANDLE handle, const char* device);

/**
 * Disconnects the instrument and resets the vendor's library, which all objects of the process share. Does nothing to
 * an object that never found an instrument.
 */
void SPM_close(SPM_HANDLE handle);

/**
 * Whether the object has an open connection. An instrument that was unplugged since it was opened still counts.
 * @return true when open; false also on failure
 */
bool SPM_isOpened(SPM_HANDLE handle);

/**
 * Reads the options in force on the instrument.
 * @return 1, 1, 0 while the i1Pro 3 is open; all 0 while it is not, and on failure
 */
SPM_STATUS SPM_getStatus(SPM_HANDLE handle);

/**
 * Takes one step of the calibration dialogue.
 *
 * Begin with SPM_STEP_BEGIN. While the answer is SPM_STEP_CONTINUE, ask the user to place the instrument on the
 * reference that the answer names and to press its button, and call again with SPM_STEP_CONTINUE. The answer
 * SPM_STEP_DONE ends the dialogue: calibrated. SPM_STEP_NOTHING ends it without a calibration: no instrument is open,
 * no calibration was begun, the step is none of SPM_STEP_..., or calibrating failed. It also drops an earlier
 * calibration of the open instrument.
 * @param calibration  the request, overwritten with the answer; on failure it stays as it was
 */
void SPM_calibrate(SPM_HANDLE handle, SPM_CALIBRATION* calibration);

/**
 * Asks the instrument itself whether it is calibrated, by taking a spot measurement on every call.
 * @return true when calibrated, and also when the measurement fails for another reason than a missing calibration;
 * false when not calibrated, when no instrument is open, and when the measurement can't be set up
 */
bool SPM_isCalibrated(SPM_HANDLE handle);

/**
 * Reads the number of entries that a spectrum has, whether or not an instrument is open.
 * @return 36 for the i1Pro 3; 0 on failure
 */
int32_t SPM_getNumberOfReflections(SPM_HANDLE handle);

/**
 * Measures CIELab values of one patch (a spot) or of a row of patches (a scan), once the user has pressed the button.
 *
 * True with a `count` of 0 says that nothing was measured: the button was not pressed, no instrument is open, the
 * count was below 1, or no patch was found in the row. A row of which fewer patches were found than wanted gives those.
 * @param values  array of `count` records; only those that are measured are written
 * @param count   in: patches wanted, 1 for a spot, 2 or more for a scan; out: patches measured, the first records
 * @return true unless something failed. After a failure `count` tells how many patches were measured before it
 */
bool SPM_read(SPM_HANDLE handle, SPM_LAB* values, int32_t* count);

/**
 * Measures reflectance spectra of one patch (a spot) or of a row of patches (a scan), once the user has pressed the
 * button. Answers as SPM_read does.
 *
 * Entry j of a spectrum gets the wavelength 380 + 10 * j nm. The first record's `numberOfReflections` must be
 * SPM_getNumberOfReflections; if it is not, nothing is measured: true with a `count` of 0. A later record gets as many
 * entries as its own `numberOfReflections` says, none where that is below 1 and at most 36. A record to be written
 * whose `reflections` is null is a failure.
 * @param spectra  array of `count` records, each with the array that is to be filled
 * @param count    in: patches wanted, 1 for a spot, 2 or more for a scan; out: patches measured, the first records
 * @return true unless something failed. After a failure `count` tells how many records were filled before it
 */
bool SPM_readSpectrum(SPM_HANDLE handle, SPM_SPECTRUM* spectra, int32_t* count);

/** @{ The type of a pointer to the function of its name, for hosts that load the module at run time. */
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
/** @} */

#ifdef __cplusplus
}
#endif

#endif

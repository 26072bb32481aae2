/**
 * @file SPM_listener.h
 * Why a call failed: the messages of a module object, for hosts in every language and of every compiler.
 *
 * The functions of SPM.h say that something failed. The module's messages say why, but only to a C++ class of the
 * compiler that built the module. The library spm_i1pro3_listener is such a class, and passes each message on to a
 * plain C function of the host's. It needs neither the module nor the vendor's library to be loaded, but must come from
 * the same release as the module that made the handle.
 *
 * One listener
 *   A module object has one listener. Subscribing takes the place of any earlier subscription or C++ listener, and
 *   unsubscribing removes whichever is attached: end a subscription before beginning the next on the same object.
 *
 * Threads
 *   Neither function may overlap with another call on the same object. The callback runs on the thread of the call that
 *   logs, before that call returns.
 */
#ifndef SPM_LISTENER_H
#define SPM_LISTENER_H

#include "SPM.h" /* beside this header where it is installed */

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Receives a message. Must not call functions with the same object. An exception that it throws is dropped, and the
 * call that logged goes on as if the callback had returned.
 * @param context       what was passed to SPM_subscribe
 * @param level         0 an error, 1 a warning, 2 information for the user; there are no others
 * @param moduleNumber  the part that logs: 1 the support library, 7 the spectrophotometer module
 * @param errorNumber   the number of the error within that part; 0 for messages that report no error
 * @param text          the main message, in one line or more: of a failed call of the vendor's library the instrument's
 *                      own error text, then a line such as "ErrorNumber: 7". Valid only during the call
 * @param detail        further information, often empty, never null. Valid only during the call
 */
typedef void (*SPM_MESSAGE_CALLBACK)(void* context, int32_t level, int32_t moduleNumber, int32_t errorNumber,
                                     const char* text, const char* detail);

/** A callback that is attached to a module object. Opaque. */
typedef struct SPM_SUBSCRIPTION SPM_SUBSCRIPTION;

/**
 * Attaches a callback to a module object.
 * @param handle    of SPM_create
 * @param callback  called for each message until SPM_unsubscribe
 * @param context   passed to the callback as it is; may be null
 * @return the subscription, which the host ends by SPM_unsubscribe; null when `handle` or `callback` is null, or when
 *         memory ran out
 */
SPM_SUBSCRIPTION* SPM_subscribe(SPM_HANDLE handle, SPM_MESSAGE_CALLBACK callback, void* context);

/**
 * Detaches the callback and ends the subscription. Must be called before SPM_destroy, and outside of the callback.
 * @param subscription  null is ignored
 */
void SPM_unsubscribe(SPM_SUBSCRIPTION* subscription);

/** @{ The type of a pointer to the function of its name, for hosts that load the library at run time. */
typedef SPM_SUBSCRIPTION* (*SPM_subscribe_t)(SPM_HANDLE handle, SPM_MESSAGE_CALLBACK callback, void* context);
typedef void (*SPM_unsubscribe_t)(SPM_SUBSCRIPTION* subscription);
/** @} */

#ifdef __cplusplus
}
#endif

#endif

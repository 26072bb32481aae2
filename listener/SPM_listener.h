/**
 * @file SPM_listener.h
 * The messages of a module object, which say why a call failed, for hosts in any language and built with any compiler.
 *
 * The functions of SPM.h only report that a call failed. The reason is in the module's messages, which can only be
 * received by a C++ class built with the module's compiler. The library spm_i1pro3_listener contains such a class,
 * which forwards each message to a C function of the host. The library can be loaded without the module and the
 * vendor's library, but must be of the same release as the module that created the handle.
 *
 * One listener
 *   A module object has one listener. Subscribing replaces an earlier subscription or C++ listener, and unsubscribing
 *   detaches the current one, whichever it is. End a subscription before beginning another on the same object.
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
 * Receives a message. Must not call functions on the same object. If it throws, the exception is discarded, and the
 * call that logged continues as if the callback had returned.
 * @param context       the context passed to SPM_subscribe
 * @param level         0 error, 1 warning, 2 information for the user; there are no others
 * @param moduleNumber  the part that logs: 1 the support library, 7 the spectrophotometer module
 * @param errorNumber   the error number, unique within that part; 0 if the message reports no error
 * @param text          the main message, one or more lines. For a failed call of the vendor's library, it is the
 *                      instrument's own error text, followed by a line such as "ErrorNumber: 7". Valid only during the
 *                      call
 * @param detail        additional information, often empty, never null. Valid only during the call
 */
typedef void (*SPM_MESSAGE_CALLBACK)(void* context, int32_t level, int32_t moduleNumber, int32_t errorNumber,
                                     const char* text, const char* detail);

/** A callback attached to a module object. Opaque. */
typedef struct SPM_SUBSCRIPTION SPM_SUBSCRIPTION;

/**
 * Attaches a callback to a module object.
 * @param handle    a handle from SPM_create
 * @param callback  called for each message until SPM_unsubscribe
 * @param context   passed to the callback unchanged; may be null
 * @return the subscription, which the host must end with SPM_unsubscribe; null if `handle` or `callback` is null, or if
 *         out of memory
 */
SPM_SUBSCRIPTION* SPM_subscribe(SPM_HANDLE handle, SPM_MESSAGE_CALLBACK callback, void* context);

/**
 * Detaches the callback and ends the subscription. Must be called before SPM_destroy, whose messages the callback
 * therefore never receives, and not from the callback.
 * @param subscription  ignored if null
 */
void SPM_unsubscribe(SPM_SUBSCRIPTION* subscription);

/* A pointer to the function of the same name, for hosts that load the library at run time. */
typedef SPM_SUBSCRIPTION* (*SPM_subscribe_t)(SPM_HANDLE handle, SPM_MESSAGE_CALLBACK callback, void* context);
typedef void (*SPM_unsubscribe_t)(SPM_SUBSCRIPTION* subscription);

#ifdef __cplusplus
}
#endif

#endif

// SPDX-License-Identifier: Apache-2.0
// The registry of assertion handlers, one for the process, and the entry through which failed assertions reach them.
//
// - The registry never owns a handler; whoever registers it unregisters it before destroying it.
// - All four functions may be called from any thread, while others call them, from within a handler, before main and
//   from destructors of static objects. Not from signal handlers.
// - Handlers are called without any lock held, so a caller who waits for them (see gtUnRegister...) must not hold a
//   lock that they need.
#ifndef GT_ASSERTION_FAILURE_HANDLER_REGISTRY_H
#define GT_ASSERTION_FAILURE_HANDLER_REGISTRY_H

#include "platform/baseTools/gtIAssertionFailureHandler.h"

#pragma GCC visibility push(default)

// From now on the handler hears of every failed assertion, after those that were registered before it. Null, or a
// handler that is registered already, changes nothing. Throws std::bad_alloc, with nothing changed, without memory.
void gtRegisterAssertionFailureHandler(gtIAssertionFailureHandler* pHandler);

// Once this has returned the handler is not called any more, and no call of it is running on another thread: it may be
// destroyed. To that end it waits for running calls. Null, or a handler that is not registered, changes nothing.
//
// Called from within a handler (any handler), it waits neither for the calls that its own thread is in nor for those of
// threads that are themselves waiting here, as both would never end: two threads that are in one handler may both
// unregister it. A handler that destroys itself after that must know that it runs on no other thread.
void gtUnRegisterAssertionFailureHandler(gtIAssertionFailureHandler* pHandler);

// An assertion failed: calls the handlers that are registered, in the order of registration, and returns. A handler
// that is registered meanwhile hears of the next failure.
//
// If no handler was called, the failure is one line on standard error, "FILE:LINE: FUNCTION: MESSAGE", in which null
// reads as "(null)" and ASCII's control characters as blanks. The same line is written
// - if a handler lets an exception out, which ends here and keeps no other handler from being called;
// - for a failure that is nested in gtDeepestNestedAssertionFailure calls of handlers on this thread, which none of
//   them hears of: handlers that fail in handling failures come to an end.
//
// Handlers find the errno of the failing code, and so does that code afterwards. A handler must not end its thread.
void gtTriggerAssertonFailureHandler(const char* functionName, const char* fileName, int lineNumber,
                                     const char* message);

constexpr int gtDeepestNestedAssertionFailure = 8;

// How many handlers are registered at this moment.
int gtAmountOfRegisteredAssertionFailureHandlers();

#pragma GCC visibility pop

#endif

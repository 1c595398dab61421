// SPDX-License-Identifier: Apache-2.0
// What wants to hear of failed assertions derives from this and registers itself: see
// platform/baseTools/gtAssertionFailureHandlerRegistry.h.
#ifndef GT_I_ASSERTION_FAILURE_HANDLER_H
#define GT_I_ASSERTION_FAILURE_HANDLER_H

#pragma GCC visibility push(default)

class gtIAssertionFailureHandler
{
public:
    // An assertion failed. The arguments are what the failing code handed over, null pointers included, and are valid
    // until this returns; execution goes on after the failed check then. Called on the thread on which the assertion
    // failed, by several threads at once if need be, and without any lock of the registry held. It may fail assertions
    // itself, and register and unregister handlers, this one included.
    virtual void onAssertionFailure(const char* functionName, const char* fileName, int lineNumber,
                                    const char* message) = 0;

    // A handler must be unregistered before it is destroyed.
    virtual ~gtIAssertionFailureHandler();
};

#pragma GCC visibility pop

#endif

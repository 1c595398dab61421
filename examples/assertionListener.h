// SPDX-License-Identifier: Apache-2.0
// Makes an assertion that fails while a GoogleTest case runs a failure of that case, at the place of the assertion:
//
//     testing::UnitTest::GetInstance()->listeners().Append(new AssertionListener);
//
// Failures on other threads count, too, where GoogleTest is safe with threads (as it is with pthreads).
#ifndef ASSERTION_LISTENER_H
#define ASSERTION_LISTENER_H

#include <gtest/gtest.h>

#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"

class AssertionListener : public testing::EmptyTestEventListener, private gtIAssertionFailureHandler
{
private:
    void OnTestStart(const testing::TestInfo&) override { gtRegisterAssertionFailureHandler(this); }
    void OnTestEnd(const testing::TestInfo&) override { gtUnRegisterAssertionFailureHandler(this); }

    void onAssertionFailure(const char* functionName, const char* fileName, int lineNumber,
                            const char* message) override
    {
        ADD_FAILURE_AT(fileName, lineNumber) << message << " in " << functionName;
    }
};

#endif

// SPDX-License-Identifier: Apache-2.0
// Notes the failed assertions of a test, as long as it lives.
#ifndef TESTS_APP_ASSERTION_RECORDER_H
#define TESTS_APP_ASSERTION_RECORDER_H

#include <string>
#include <vector>

#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"

class AssertionRecorder : public gtIAssertionFailureHandler
{
public:
    AssertionRecorder() { gtRegisterAssertionFailureHandler(this); }
    ~AssertionRecorder() override { gtUnRegisterAssertionFailureHandler(this); }
    AssertionRecorder(const AssertionRecorder&) = delete;
    AssertionRecorder& operator=(const AssertionRecorder&) = delete;

    void onAssertionFailure(const char* functionName, const char* fileName, int lineNumber,
                            const char* message) override
    {
        reports.push_back(std::string(functionName) + " " + fileName + " " + std::to_string(lineNumber) + " " +
                          message);
    }

    std::vector<std::string> reports;
};

#endif

// SPDX-License-Identifier: Apache-2.0
// Notes the failed assertions of a test, as long as it lives.
#ifndef TS_ASSERTION_RECORDER_H
#define TS_ASSERTION_RECORDER_H

#include <cerrno>
#include <string>
#include <vector>

#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"

class tsAssertionRecorder : public gtIAssertionFailureHandler
{
public:
    struct Report
    {
        std::string functionName;
        std::string fileName;
        int lineNumber;
        std::string message;
        int errorNumber;
    };

    tsAssertionRecorder() { gtRegisterAssertionFailureHandler(this); }
    ~tsAssertionRecorder() override { gtUnRegisterAssertionFailureHandler(this); }
    tsAssertionRecorder(const tsAssertionRecorder&) = delete;
    tsAssertionRecorder& operator=(const tsAssertionRecorder&) = delete;

    void onAssertionFailure(const char* functionName, const char* fileName, int lineNumber,
                            const char* message) override
    {
        const int errorNumber = errno;
        reports.push_back({functionName, fileName, lineNumber, message, errorNumber});
    }

    std::vector<std::string> messages() const
    {
        std::vector<std::string> messages;
        for (const Report& report : reports)
        {
            messages.push_back(report.message);
        }
        return messages;
    }

    // "FUNCTION FILE LINE MESSAGE" of each.
    std::vector<std::string> lines() const
    {
        std::vector<std::string> lines;
        for (const Report& report : reports)
        {
            lines.push_back(report.functionName + " " + report.fileName + " " + std::to_string(report.lineNumber) +
                            " " + report.message);
        }
        return lines;
    }

    std::vector<Report> reports;
};

#endif

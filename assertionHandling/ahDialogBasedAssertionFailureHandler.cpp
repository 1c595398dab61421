// SPDX-License-Identifier: Apache-2.0
#include "assertionHandling/ahDialogBasedAssertionFailureHandler.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>

#include "assertionHandling/ahAssertDialog.h"
#include "platform/baseTools/gtString.h"
#include "platform/osWrappers/osProcess.h"
#include "platform/osWrappers/osTime.h"
#include "platform/toolkit/gtTextConversion.h"

static_assert(sizeof(unsigned int) == 4, "a thread id has 32 bits");

ahDialogBasedAssertionFailureHandler::ahDialogBasedAssertionFailureHandler(unsigned int mainThreadId)
    : _mainThreadId(mainThreadId)
{
}

void ahDialogBasedAssertionFailureHandler::onAssertionFailure(const char* /*functionName*/, const char* /*fileName*/,
                                                              int /*lineNumber*/, const char* /*message*/)
{
}

ahDialogBasedAssertionFailureHandler::~ahDialogBasedAssertionFailureHandler() = default;

bool ahDialogBasedAssertionFailureHandler::shouldDisplayDialog() const
{
    return false;
}

bool ahDialogBasedAssertionFailureHandler::isInIgnoredSourceLocations(const osFilePath& filePath, int lineNumber)
{
    bool isIgnored = false;
    for (const ahSourceCodeLocation* pLocation : _ignoredSourceLocations)
    {
        if (pLocation != nullptr && pLocation->_filePath == filePath && pLocation->_lineNumber == lineNumber)
        {
            isIgnored = true;
        }
    }
    return isIgnored;
}

void ahDialogBasedAssertionFailureHandler::outputAssertionMessageToStderr(const char* functionName,
                                                                          const char* fileName, int lineNumber,
                                                                          const char* message)
{
    const int callersErrno = errno;

    osTime now;
    now.setFromCurrentTime();
    gtString timeText;
    now.timeAsString(timeText, osTime::DATE_AND_TIME, osTime::LOCAL);

    gtString report(timeText);
    report.append(" - Assertion failure: ").append(message).append(" ").append(functionName).append(" ");
    report.append(fileName).appendFormattedString(" line %d\r\n", lineNumber);

    errno = callersErrno;
    std::perror(report.asCharArray());
    errno = callersErrno;
}

int ahDialogBasedAssertionFailureHandler::displayAssertionDialog(const char* /*functionName*/,
                                                                 const osFilePath& filePath, int lineNumber,
                                                                 const char* message)
{
    if (isInIgnoredSourceLocations(filePath, lineNumber))
    {
        return AH_IGNORE_BUTTON_ID;
    }
    const wxString messageText = gtTextFromBytes(message);
    ahAssertDialog dialog(filePath, lineNumber, messageText, nullptr);
    return dialog.ShowModal();
}

void ahDialogBasedAssertionFailureHandler::handleUsersDecision(int usersDecision, const osFilePath& filePath,
                                                               int lineNumber)
{
    switch (usersDecision)
    {
    case AH_IGNORE_ALL_BUTTON_ID:
    {
        std::unique_ptr<ahSourceCodeLocation> pLocation(new (std::nothrow) ahSourceCodeLocation);
        if (pLocation != nullptr)
        {
            pLocation->_filePath = filePath;
            pLocation->_lineNumber = lineNumber;
            // Appending may throw, and then the record is still ours.
            _ignoredSourceLocations.push_back(pLocation.get());
            static_cast<void>(pLocation.release());
        }
        break;
    }
    case AH_OPEN_BUTTON_ID:
        osOpenFileInSourceCodeEditor(filePath, lineNumber);
        break;
    case AH_DEBUG_BUTTON_ID:
        osThrowBreakpointException();
        break;
    case AH_EXIT_BUTTON_ID:
        std::exit(0);
    case AH_IGNORE_BUTTON_ID:
    default:
        break;
    }
}

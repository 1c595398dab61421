#include "host/hoInteractiveAssertionFailureHandler.h"

#include "assertionHandling/ahAssertDialog.h"
#include "host/hoAssertionReport.h"
#include "platform/osWrappers/osProcess.h"
#include "platform/osWrappers/osTime.h"

#include <wx/app.h>

#include <cerrno>
#include <utility>

namespace
{
class Flag
{
public:
    explicit Flag(std::atomic<bool>& isUp) : _isUp(isUp) { _isUp = true; }
    ~Flag() { _isUp = false; }
    Flag(const Flag&) = delete;
    Flag& operator=(const Flag&) = delete;

private:
    std::atomic<bool>& _isUp;
};

hoAssertionDecision decisionOf(int usersDecision)
{
    switch (usersDecision)
    {
    case AH_IGNORE_BUTTON_ID:
        return hoAssertionDecision::Ignore;
    case AH_IGNORE_ALL_BUTTON_ID:
        return hoAssertionDecision::IgnoreAll;
    case AH_OPEN_BUTTON_ID:
        return hoAssertionDecision::Open;
    case AH_DEBUG_BUTTON_ID:
        return hoAssertionDecision::Debug;
    case AH_EXIT_BUTTON_ID:
        return hoAssertionDecision::Exit;
    default:
        return hoAssertionDecision::Closed;
    }
}
}  // namespace

hoInteractiveAssertionFailureHandler::hoInteractiveAssertionFailureHandler(unsigned int mainThreadId,
                                                                           std::shared_ptr<hoAssertionReport> pReport)
    : ahDialogBasedAssertionFailureHandler(mainThreadId), _pReport(std::move(pReport)), _isDeciding(false)
{
}

void hoInteractiveAssertionFailureHandler::onAssertionFailure(const char* functionName, const char* fileName,
                                                              int lineNumber, const char* message)
{
    const int error = errno;
    outputAssertionMessageToStderr(functionName, fileName, lineNumber, message);
    _pReport->record(functionName, fileName, lineNumber, message, osGetCurrentThreadId(),
                     osTime().setFromCurrentTime().secondsSince1970());
    if (_isDeciding || wxTheApp == nullptr)
    {
        errno = error;
        return;
    }
    if (osGetCurrentThreadId() == _mainThreadId)
    {
        decide(functionName, fileName, lineNumber, message);
    }
    else
    {
        wxTheApp->CallAfter(
            [pWeakHandler = weak_from_this(), function = gtString(functionName), file = gtString(fileName), lineNumber,
             reason = gtString(message)]
            {
                if (const auto pHandler = pWeakHandler.lock())
                {
                    pHandler->decide(function.asCharArray(), file.asCharArray(), lineNumber, reason.asCharArray());
                }
            });
    }
    errno = error;
}

void hoInteractiveAssertionFailureHandler::decide(const char* functionName, const char* fileName, int lineNumber,
                                                  const char* message)
{
    if (_isDeciding)
    {
        return;
    }
    // The dialog's own event loop may end with the owner gone.
    const auto pSelf = weak_from_this().lock();
    const Flag deciding(_isDeciding);
    const osFilePath filePath((gtString(fileName)));
    if (isInIgnoredSourceLocations(filePath, lineNumber))
    {
        // The report keeps that it was decided once and for all.
        return;
    }
    const int decision = displayAssertionDialog(functionName, filePath, lineNumber, message);
    // First, because some decisions do not come back.
    _pReport->decide(fileName, lineNumber, decisionOf(decision));
    handleUsersDecision(decision, filePath, lineNumber);
}

#include "host/hoInteractiveAssertionFailureHandler.h"

#include "platform/osWrappers/osProcess.h"

#include <wx/app.h>

#include <cerrno>

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
}  // namespace

hoInteractiveAssertionFailureHandler::hoInteractiveAssertionFailureHandler(unsigned int mainThreadId)
    : ahDialogBasedAssertionFailureHandler(mainThreadId), _isDeciding(false)
{
}

void hoInteractiveAssertionFailureHandler::onAssertionFailure(const char* functionName, const char* fileName,
                                                              int lineNumber, const char* message)
{
    const int error = errno;
    outputAssertionMessageToStderr(functionName, fileName, lineNumber, message);
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
    handleUsersDecision(displayAssertionDialog(functionName, filePath, lineNumber, message), filePath, lineNumber);
}

// SPDX-License-Identifier: Apache-2.0
#include "host/assertions/hoInteractiveAssertionFailureHandler.h"

#include "assertionHandling/ahAssertDialog.h"
#include "host/assertions/hoAssertionReport.h"
#include "platform/osWrappers/osProcess.h"
#include "platform/osWrappers/osTime.h"

#include <wx/app.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

namespace
{
const int pauseBetweenDecisions = 20;  // milliseconds

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
    : ahDialogBasedAssertionFailureHandler(mainThreadId),
      _pReport(std::move(pReport)),
      _isDeciding(false),
      _call([this] { decideSoon(); })
{
    _pause.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { decideNext(); });
}

hoInteractiveAssertionFailureHandler::~hoInteractiveAssertionFailureHandler() = default;

void hoInteractiveAssertionFailureHandler::onAssertionFailure(const char* functionName, const char* fileName,
                                                              int lineNumber, const char* message)
{
    const int error = errno;
    // Whoever fails an assertion expects no exception.
    try
    {
        outputAssertionMessageToStderr(functionName, fileName, lineNumber, message);
        _pReport->record(functionName, fileName, lineNumber, message, osGetCurrentThreadId(),
                         osTime().setFromCurrentTime().secondsSince1970());
        if (!_isDeciding && wxTheApp != nullptr)
        {
            ask({gtString(functionName), gtString(fileName), lineNumber, gtString(message)});
        }
    }
    catch (const std::bad_alloc&)
    {
    }
    errno = error;
}

void hoInteractiveAssertionFailureHandler::ask(Failure failure)
{
    if (osGetCurrentThreadId() == _mainThreadId)
    {
        decide(failure);
    }
    else
    {
        decideLater(std::move(failure));
    }
}

// Whatever takes memory comes before anything is changed.
void hoInteractiveAssertionFailureHandler::decideLater(Failure failure)
{
    std::list<Failure> last;
    last.push_back(std::move(failure));
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        const bool isWaiting =
            std::any_of(_waiting.begin(), _waiting.end(),
                        [&](const Failure& other)
                        { return other._line == last.front()._line && other._file == last.front()._file; });
        if (isWaiting || _waiting.size() == mostWaiting)
        {
            return;
        }
        _waiting.splice(_waiting.end(), last);
    }
    _call.request();
}

void hoInteractiveAssertionFailureHandler::decideSoon()
{
    if (!_pause.IsRunning())
    {
        _pause.StartOnce(1);
    }
}

// Failures that were decided as fast as they come would keep the main thread from everything else.
void hoInteractiveAssertionFailureHandler::decideNext()
{
    // The dialog's own event loop may end with the owner gone.
    const auto pSelf = weak_from_this().lock();
    if (pSelf == nullptr || !isAnyWaiting())
    {
        return;
    }
    try
    {
        Failure failure;
        if (!_isDeciding && takeWaiting(failure))
        {
            decide(failure);
        }
    }
    catch (const std::bad_alloc&)
    {
    }
    _pause.StartOnce(pauseBetweenDecisions);
}

bool hoInteractiveAssertionFailureHandler::isAnyWaiting()
{
    const std::lock_guard<std::mutex> lock(_mutex);
    return !_waiting.empty();
}

// The next that is not ignored by now.
bool hoInteractiveAssertionFailureHandler::takeWaiting(Failure& failure)
{
    const std::lock_guard<std::mutex> lock(_mutex);
    while (!_waiting.empty())
    {
        std::swap(failure, _waiting.front());
        _waiting.pop_front();
        if (!isInIgnoredSourceLocations(osFilePath(failure._file), failure._line))
        {
            return true;
        }
    }
    return false;
}

void hoInteractiveAssertionFailureHandler::decide(const Failure& failure)
{
    if (_isDeciding)
    {
        return;
    }
    // The dialog's own event loop may end with the owner gone.
    const auto pSelf = weak_from_this().lock();
    const Flag deciding(_isDeciding);
    const osFilePath filePath(failure._file);
    if (isInIgnoredSourceLocations(filePath, failure._line))
    {
        // The report keeps that it was decided once and for all.
        return;
    }
    const int decision = displayAssertionDialog(failure._function.asCharArray(), filePath, failure._line,
                                                failure._message.asCharArray());
    // First, because some decisions do not come back.
    _pReport->decide(failure._file.asCharArray(), failure._line, decisionOf(decision));
    handleUsersDecision(decision, filePath, failure._line);
}

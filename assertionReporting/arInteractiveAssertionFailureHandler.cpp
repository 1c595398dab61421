// SPDX-License-Identifier: Apache-2.0
#include "assertionReporting/arInteractiveAssertionFailureHandler.h"

#include "assertionHandling/ahAssertDialog.h"
#include "assertionReporting/arAssertionReport.h"
#include "assertionReporting/arStackTrace.h"
#include "assertionReporting/arWrittenFailures.h"
#include "platform/osWrappers/osProcess.h"
#include "platform/osWrappers/osTime.h"
#include "platform/toolkit/gtMainThreadCall.h"
#include "platform/toolkit/gtToolkitState.h"

#include <wx/app.h>
#include <wx/msgdlg.h>
#include <wx/utils.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

namespace
{
const int pauseBetweenDecisions = 20;  // milliseconds

thread_local bool isEnding = false;

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

arAssertionDecision decisionOf(int usersDecision)
{
    switch (usersDecision)
    {
    case AH_IGNORE_BUTTON_ID:
        return arAssertionDecision::Ignore;
    case AH_IGNORE_ALL_BUTTON_ID:
        return arAssertionDecision::IgnoreAll;
    case AH_OPEN_BUTTON_ID:
        return arAssertionDecision::Open;
    case AH_DEBUG_BUTTON_ID:
        return arAssertionDecision::Debug;
    case AH_EXIT_BUTTON_ID:
        return arAssertionDecision::Exit;
    default:
        return arAssertionDecision::Closed;
    }
}
}  // namespace

arInteractiveAssertionFailureHandler::arInteractiveAssertionFailureHandler(unsigned int mainThreadId,
                                                                           std::shared_ptr<arAssertionReport> pReport)
    : ahDialogBasedAssertionFailureHandler(mainThreadId),
      _pReport(std::move(pReport)),
      _isDeciding(false),
      _pHasMainLoopRun(std::make_shared<bool>(false))
{
    // wxTheApp would make a wxApp of it, which an application without windows is not.
    wxAppConsole* const pApplication = wxAppConsole::GetInstance();
    if (pApplication == nullptr)
    {
        return;
    }
    // Whatever loop comes first; that of a dialog does not count.
    pApplication->CallAfter([pHasRun = _pHasMainLoopRun] { *pHasRun = wxAppConsole::IsMainLoopRunning(); });
    _pPause = std::make_unique<wxTimer>();
    _pPause->Bind(wxEVT_TIMER, [this](wxTimerEvent&) { decideNext(); });
    _pCall = std::make_unique<gtMainThreadCall>([this] { decideSoon(); });
}

arInteractiveAssertionFailureHandler::~arInteractiveAssertionFailureHandler() = default;

void arInteractiveAssertionFailureHandler::onAssertionFailure(const char* functionName, const char* fileName,
                                                              int lineNumber, const char* message)
{
    const int error = errno;
    // Whoever fails an assertion expects no exception.
    try
    {
        std::vector<std::uintptr_t> stack = arStackOfThisThread();
        outputAssertionMessageToStderr(functionName, fileName, lineNumber, message);
        arCountWrittenFailure();
        _pReport->record(functionName, fileName, lineNumber, message, osGetCurrentThreadId(),
                         osTime().setFromCurrentTime().secondsSince1970(), std::move(stack));
        if (std::exchange(isEnding, false))
        {
            _pReport->decide(fileName, lineNumber, arAssertionDecision::Terminated);
        }
        else if (!_isDeciding && _pCall != nullptr && wxAppConsole::GetInstance() != nullptr)
        {
            ask({gtString(functionName), gtString(fileName), lineNumber, gtString(message)});
        }
    }
    catch (const std::bad_alloc&)
    {
    }
    errno = error;
}

void arInteractiveAssertionFailureHandler::ask(Failure failure)
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
void arInteractiveAssertionFailureHandler::decideLater(Failure failure)
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
    _pCall->request();
}

void arInteractiveAssertionFailureHandler::decideSoon()
{
    if (!_pPause->IsRunning())
    {
        _pPause->StartOnce(1);
    }
}

// Failures that were decided as fast as they come would keep the main thread from everything else.
void arInteractiveAssertionFailureHandler::decideNext()
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
    _pPause->StartOnce(pauseBetweenDecisions);
}

bool arInteractiveAssertionFailureHandler::isAnyWaiting()
{
    const std::lock_guard<std::mutex> lock(_mutex);
    return !_waiting.empty();
}

// The next that is not ignored by now.
bool arInteractiveAssertionFailureHandler::takeWaiting(Failure& failure)
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

void arInteractiveAssertionFailureHandler::decide(const Failure& failure)
{
    if (_isDeciding || !canShowDialogs())
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
    const int decision = askForDecision(failure, filePath);
    // First, because some decisions do not come back.
    _pReport->decide(failure._file.asCharArray(), failure._line, decisionOf(decision));
    const bool mayEnd = decision == AH_EXIT_BUTTON_ID || (decision == AH_DEBUG_BUTTON_ID && !osIsDebuggerAttached());
    if (mayEnd && _beforeEnd)
    {
        _beforeEnd();
    }
    handleUsersDecision(decision, filePath, failure._line);
}

bool arInteractiveAssertionFailureHandler::canShowDialogs() const
{
    return gtCanShowWindows() && (!*_pHasMainLoopRun || wxAppConsole::IsMainLoopRunning());
}

int arInteractiveAssertionFailureHandler::askForDecision(const Failure& failure, const osFilePath& filePath)
{
    int decision = AH_IGNORE_BUTTON_ID;
    do
    {
        decision = displayAssertionDialog(failure._function.asCharArray(), filePath, failure._line,
                                          failure._message.asCharArray());
    } while (decision == AH_DEBUG_BUTTON_ID && !mayBreak());
    return decision;
}

// Whether the breakpoint is really wanted.
bool arInteractiveAssertionFailureHandler::mayBreak() const
{
    if (osIsDebuggerAttached())
    {
        return true;
    }
    wxMessageDialog question(nullptr,
                             wxString::Format("Without one, the breakpoint ends the program. To debug it, attach a "
                                              "debugger to process %lu now, and go on then.",
                                              wxGetProcessId()),
                             "No debugger is attached",
                             wxOK | wxCANCEL | wxCANCEL_DEFAULT | wxICON_WARNING | wxSTAY_ON_TOP);
    question.SetOKCancelLabels("&Break", "Go bac&k");
    return question.ShowModal() == wxID_OK;
}

void arInteractiveAssertionFailureHandler::announceEnd()
{
    isEnding = true;
}

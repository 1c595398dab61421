// SPDX-License-Identifier: Apache-2.0
// The handler for failed assertions that asks the developer: a line on standard error, then the assertion dialog, then
// what was decided there. Every failure goes into a report, also one that is ignored, and so does every decision,
// before it is carried out.
//
// - On the main thread the dialog comes at once and onAssertionFailure returns when it was decided.
// - On any other thread onAssertionFailure returns at once; the dialog comes on the main thread when that handles its
//   events, with the arguments as they were. A place waits for its dialog once, however often it fails meanwhile, and
//   mostWaiting places wait at the same time; what is more is written and recorded, nothing more. However fast threads
//   fail, the main thread gets to its other events between two dialogs.
// - While a dialog is up, or its decision is being carried out, a failure on any thread is written and
//   recorded, nothing more.
// - Where no window can be shown (no application object with windows: before the toolkit starts, after it has ended, in
//   a test runner; no display; or the main loop has run and is over) a failure is written and recorded, nothing more.
//   The same goes for a failure that announceEnd was called for. A handler that is made without an application object
//   never asks.
// - Debug without a debugger would end the program: it is asked about first, and who does not want that is back in the
//   dialog.
// - Without memory a failure may be neither written nor recorded nor shown; whoever fails goes on all the same, and so
//   does the main thread.
//
// Threads: onAssertionFailure, isDeciding and announceEnd may be called from any thread. Everything else, construction
// and destruction too, is for the main thread, which is the one whose id the constructor gets.
// Memory: to be made by std::make_shared. The owner unregisters the handler before letting go of it; failures that
// still wait for their dialog are dropped then, and one whose dialog is up keeps the handler until it is decided.
#ifndef AR_INTERACTIVE_ASSERTION_FAILURE_HANDLER_H
#define AR_INTERACTIVE_ASSERTION_FAILURE_HANDLER_H

#include "assertionHandling/ahDialogBasedAssertionFailureHandler.h"
#include "platform/baseTools/gtString.h"

#include <wx/timer.h>

#include <atomic>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <utility>

#pragma GCC visibility push(default)

class arAssertionReport;
class gtMainThreadCall;

class arInteractiveAssertionFailureHandler : public ahDialogBasedAssertionFailureHandler,
                                             public std::enable_shared_from_this<arInteractiveAssertionFailureHandler>
{
public:
    // Places that wait for their dialog.
    static constexpr std::size_t mostWaiting = 100;

    // pReport may not be null.
    arInteractiveAssertionFailureHandler(unsigned int mainThreadId, std::shared_ptr<arAssertionReport> pReport);
    ~arInteractiveAssertionFailureHandler() override;
    arInteractiveAssertionFailureHandler(const arInteractiveAssertionFailureHandler&) = delete;
    arInteractiveAssertionFailureHandler& operator=(const arInteractiveAssertionFailureHandler&) = delete;

    // Any text may be null. errno is the same before and after. Lets no std::bad_alloc out.
    void onAssertionFailure(const char* functionName, const char* fileName, int lineNumber,
                            const char* message) override;

    // Whether a failure is being decided at this moment. From any thread.
    bool isDeciding() const { return _isDeciding; }

    // The function is called on the main thread before a decision is carried out that may end the program: Exit, and
    // Debug without a debugger. It gives up what must not be left half done. An empty one is none.
    void setBeforeEnd(std::function<void()> function) { _beforeEnd = std::move(function); }

    // The next failure of the calling thread is one after which the program cannot go on: it is written and recorded as
    // that, and nobody is asked.
    static void announceEnd();

private:
    struct Failure
    {
        gtString _function;
        gtString _file;
        int _line = 0;
        gtString _message;
    };

    void ask(Failure failure);
    void decideLater(Failure failure);
    void decideSoon();
    void decideNext();
    bool isAnyWaiting();
    bool takeWaiting(Failure& failure);
    void decide(const Failure& failure);
    bool canShowDialogs() const;
    int askForDecision(const Failure& failure, const osFilePath& filePath);
    bool mayBreak() const;

    const std::shared_ptr<arAssertionReport> _pReport;
    std::atomic<bool> _isDeciding;
    std::function<void()> _beforeEnd;
    std::shared_ptr<bool> _pHasMainLoopRun;
    std::unique_ptr<wxTimer> _pPause;  // before the next decision of what waits; null without an application object

    std::mutex _mutex;  // guards _waiting
    std::list<Failure> _waiting;

    std::unique_ptr<gtMainThreadCall> _pCall;  // when something waits; null without an application object
};

#pragma GCC visibility pop

#endif

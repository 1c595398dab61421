// SPDX-License-Identifier: Apache-2.0
// The handler for failed assertions that asks the developer: a line on standard error, then the assertion dialog, then
// what was decided there. The Developer menu puts it in the place of the silent one. Every failure goes into a report,
// also one that is ignored, and so does every decision, before it is carried out.
//
// - On the main thread the dialog comes at once and onAssertionFailure returns when it was decided.
// - On any other thread onAssertionFailure returns at once; the dialog comes on the main thread when that handles its
//   events, with the arguments as they were. A place waits for its dialog once, however often it fails meanwhile, and
//   mostWaiting places wait at the same time; what is more is written and recorded, nothing more. However fast threads
//   fail, the main thread gets to its other events between two dialogs.
// - While a dialog is up, or its decision is being carried out, a failure on any thread is written and
//   recorded, nothing more.
// - Without an application object (before the toolkit starts, after it has ended) a failure is written and
//   recorded, nothing more.
// - Without memory a failure may be neither written nor recorded nor shown; whoever fails goes on all the same, and so does
//   the main thread.
//
// Threads: onAssertionFailure may be called from any thread. Everything else, construction and destruction too, is for
// the main thread, which is the one whose id the constructor gets. An application object is there when it is made.
// Memory: to be made by std::make_shared. The owner unregisters the handler before letting go of it; failures that
// still wait for their dialog are dropped then, and one whose dialog is up keeps the handler until it is decided.
#ifndef COUNTERSIGN_HO_INTERACTIVE_ASSERTION_FAILURE_HANDLER_H
#define COUNTERSIGN_HO_INTERACTIVE_ASSERTION_FAILURE_HANDLER_H

#include "assertionHandling/ahDialogBasedAssertionFailureHandler.h"
#include "platform/toolkit/gtMainThreadCall.h"

#include <wx/timer.h>

#include <atomic>
#include <list>
#include <memory>
#include <mutex>

class hoAssertionReport;

class hoInteractiveAssertionFailureHandler : public ahDialogBasedAssertionFailureHandler,
                                             public std::enable_shared_from_this<hoInteractiveAssertionFailureHandler>
{
public:
    // Places that wait for their dialog.
    static constexpr std::size_t mostWaiting = 100;

    // pReport may not be null.
    hoInteractiveAssertionFailureHandler(unsigned int mainThreadId, std::shared_ptr<hoAssertionReport> pReport);
    ~hoInteractiveAssertionFailureHandler() override;
    hoInteractiveAssertionFailureHandler(const hoInteractiveAssertionFailureHandler&) = delete;
    hoInteractiveAssertionFailureHandler& operator=(const hoInteractiveAssertionFailureHandler&) = delete;

    // Any text may be null. errno is the same before and after. Lets no std::bad_alloc out.
    void onAssertionFailure(const char* functionName, const char* fileName, int lineNumber,
                            const char* message) override;

    // Whether a failure is being decided at this moment. From any thread.
    bool isDeciding() const { return _isDeciding; }

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

    const std::shared_ptr<hoAssertionReport> _pReport;
    std::atomic<bool> _isDeciding;
    wxTimer _pause;  // before the next decision of what waits

    std::mutex _mutex;  // guards _waiting
    std::list<Failure> _waiting;

    gtMainThreadCall _call;  // when something waits
};

#endif

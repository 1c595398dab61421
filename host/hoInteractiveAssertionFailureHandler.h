// The handler for failed assertions that asks the developer: a line on standard error, then the assertion dialog, then
// what was decided there. The Developer menu puts it in the place of the silent one. Every failure goes into a report,
// also one that is ignored, and so does every decision, before it is carried out.
//
// - On the main thread the dialog comes at once and onAssertionFailure returns when it was decided.
// - On any other thread onAssertionFailure returns at once; the dialog comes on the main thread when that handles its
//   events, with the arguments as they were.
// - While a dialog is up, or its decision is being carried out, a failure on any thread is written and
//   recorded, nothing more.
// - Without an application object (before the toolkit starts, after it has ended) a failure is written and
//   recorded, nothing more.
//
// Threads: onAssertionFailure may be called from any thread. Everything else, construction and destruction too, is for
// the main thread, which is the one whose id the constructor gets.
// Memory: to be made by std::make_shared. The owner unregisters the handler before letting go of it; failures that
// still wait for their dialog are dropped then, and one whose dialog is up keeps the handler until it is decided.
#ifndef COUNTERSIGN_HO_INTERACTIVE_ASSERTION_FAILURE_HANDLER_H
#define COUNTERSIGN_HO_INTERACTIVE_ASSERTION_FAILURE_HANDLER_H

#include "assertionHandling/ahDialogBasedAssertionFailureHandler.h"

#include <atomic>
#include <memory>

class hoAssertionReport;

class hoInteractiveAssertionFailureHandler : public ahDialogBasedAssertionFailureHandler,
                                             public std::enable_shared_from_this<hoInteractiveAssertionFailureHandler>
{
public:
    // pReport may not be null.
    hoInteractiveAssertionFailureHandler(unsigned int mainThreadId, std::shared_ptr<hoAssertionReport> pReport);

    // Any text may be null. errno is the same before and after.
    void onAssertionFailure(const char* functionName, const char* fileName, int lineNumber,
                            const char* message) override;

    // Whether a failure is being decided at this moment. From any thread.
    bool isDeciding() const { return _isDeciding; }

private:
    void decide(const char* functionName, const char* fileName, int lineNumber, const char* message);

    const std::shared_ptr<hoAssertionReport> _pReport;
    std::atomic<bool> _isDeciding;
};

#endif

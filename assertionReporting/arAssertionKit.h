// SPDX-License-Identifier: Apache-2.0
// The whole kit for failed assertions in three lines of an application's OnInit:
//
//     _pKit = std::make_unique<arAssertionKit>();
//     _pKit->setAsking(true);
//     _pKit->bridgeToolkit();
//
// From then on a failed GT_ASSERT anywhere in the process, and with the third line a failed wxASSERT or an exception
// that nothing catches, is a line on standard error, a row of the report and a dialog that asks what to do.
//
// There is one kit for the run. It is made on the main thread and destroyed in OnExit or after the main loop. Where
// there can be no dialogs (in a test runner, without a display, before the toolkit starts, after the main loop) it
// writes its line and goes on; one that is made without an application object never asks. Threads: everything here is
// for the main thread but isDeciding; assertions may fail on any.
#ifndef AR_ASSERTION_KIT_H
#define AR_ASSERTION_KIT_H

#include <functional>
#include <memory>

#pragma GCC visibility push(default)

class arAssertionReport;
class arAssertionReportWindow;
class arInteractiveAssertionFailureHandler;
class arToolkitBridge;
class wxWindow;

class arAssertionKit
{
public:
    // Nothing is registered yet; the calling thread counts as the main thread.
    arAssertionKit();
    // The handler is registered no more.
    ~arAssertionKit();
    arAssertionKit(const arAssertionKit&) = delete;
    arAssertionKit& operator=(const arAssertionKit&) = delete;

    // Whether the handler that asks is registered, and the switch for it. It is one handler for the run: what the user
    // has decided to ignore for good stays ignored however often it is switched.
    bool isAsking() const { return _isAsking; }
    void setAsking(bool isAsking);

    // What the toolkit and the language find wrong is reported, too: see arToolkitBridge.h. As long as the kit lives.
    void bridgeToolkit();

    // Whether a failure is being decided at this moment, its dialog on the screen or its decision being carried out.
    // From any thread.
    bool isDeciding() const;

    // Called before a decision is carried out that may end the program: see arInteractiveAssertionFailureHandler.h.
    void setBeforeEnd(std::function<void()> function);

    // What has failed while the handler was registered.
    const std::shared_ptr<arAssertionReport>& report() const { return _pReport; }

    // A new window that shows the report. It belongs to its parent, and there may be one at a time.
    arAssertionReportWindow* makeReportWindow(wxWindow* pParent) const;

private:
    const std::shared_ptr<arAssertionReport> _pReport;
    const std::shared_ptr<arInteractiveAssertionFailureHandler> _pHandler;
    std::unique_ptr<arToolkitBridge> _pBridge;
    bool _isAsking;
};

#pragma GCC visibility pop

#endif

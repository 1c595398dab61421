// SPDX-License-Identifier: Apache-2.0
// The Developer menu: the switch for assertion dialogs, an assertion that fails, the window of the report. While there
// are dialogs, the handler that asks is registered beside the silent one of the application, which stays registered all
// the time. The report is of this run, whether the switch is on or off. What the toolkit finds wrong, and exceptions
// that nothing catches, go to the registered handlers, too. Main thread only, with an application object there.
#ifndef COUNTERSIGN_HO_ASSERTION_CONTROLLER_H
#define COUNTERSIGN_HO_ASSERTION_CONTROLLER_H

#include "assertionReporting/arAssertionKit.h"

#include <functional>

class arAssertionReportWindow;
class wxString;
class wxWindow;

class hoAssertionController
{
public:
    struct Callbacks
    {
        std::function<void(const wxString& text)> _onNotice;
        // The decision about an assertion ends the program: what is at work must be given up.
        std::function<void()> _onEnd;
    };

    // The parent of the report's window must outlive this object.
    hoAssertionController(wxWindow& parent, Callbacks callbacks);
    hoAssertionController(const hoAssertionController&) = delete;
    hoAssertionController& operator=(const hoAssertionController&) = delete;

    bool hasDialogs() const { return _kit.isAsking(); }
    void setDialogs(bool areOn) { _kit.setAsking(areOn); }

    // Whether a dialog asks about an assertion now, or what it decided is being carried out.
    bool isDeciding() const { return _kit.isDeciding(); }

    void failAssertion();
    void showReport();

private:
    wxWindow& _parent;
    const Callbacks _callbacks;
    arAssertionKit _kit;
    arAssertionReportWindow* _pReportWindow;  // belongs to the parent; null until it is asked for
};

#endif

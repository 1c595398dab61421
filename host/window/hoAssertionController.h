// SPDX-License-Identifier: Apache-2.0
// The Developer menu: the switch for assertion dialogs, an assertion that fails, the window of the report. Main thread
// only.
#ifndef COUNTERSIGN_HO_ASSERTION_CONTROLLER_H
#define COUNTERSIGN_HO_ASSERTION_CONTROLLER_H

#include "host/assertions/hoAssertionSwitch.h"

#include <functional>

class hoAssertionReportWindow;
class wxString;
class wxWindow;

class hoAssertionController
{
public:
    // The parent of the report's window must outlive this object.
    hoAssertionController(wxWindow& parent, std::function<void(const wxString& text)> onNotice);
    hoAssertionController(const hoAssertionController&) = delete;
    hoAssertionController& operator=(const hoAssertionController&) = delete;

    bool hasDialogs() const { return _switch.isOn(); }
    void setDialogs(bool areOn) { _switch.setOn(areOn); }

    void failAssertion();
    void showReport();

private:
    wxWindow& _parent;
    const std::function<void(const wxString& text)> _onNotice;
    hoAssertionSwitch _switch;
    hoAssertionReportWindow* _pReportWindow;  // belongs to the parent; null until it is asked for
};

#endif

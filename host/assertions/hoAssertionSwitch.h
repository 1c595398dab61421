// SPDX-License-Identifier: Apache-2.0
// Whether failed assertions come up as dialogs. While they do, the handler that asks is registered beside the silent one
// of the application, which stays registered all the time. The report is of this run, whether the switch is on or off.
// Main thread only.
#ifndef COUNTERSIGN_HO_ASSERTION_SWITCH_H
#define COUNTERSIGN_HO_ASSERTION_SWITCH_H

#include <memory>

class hoAssertionReport;
class hoInteractiveAssertionFailureHandler;

class hoAssertionSwitch
{
public:
    // Off.
    hoAssertionSwitch();
    // Turns itself off.
    ~hoAssertionSwitch();
    hoAssertionSwitch(const hoAssertionSwitch&) = delete;
    hoAssertionSwitch& operator=(const hoAssertionSwitch&) = delete;

    bool isOn() const { return _pHandler != nullptr; }
    // Turning it on takes an application object. A dialog that is up stays until it is answered.
    void setOn(bool isOn);

    // Never null.
    const std::shared_ptr<hoAssertionReport>& report() const { return _pReport; }

private:
    const std::shared_ptr<hoAssertionReport> _pReport;
    std::shared_ptr<hoInteractiveAssertionFailureHandler> _pHandler;  // null while it is off
};

#endif

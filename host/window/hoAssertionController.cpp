// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoAssertionController.h"

#include "host/window/hoAssertionReportWindow.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"

#include <utility>

hoAssertionController::hoAssertionController(wxWindow& parent, std::function<void(const wxString& text)> onNotice)
    : _parent(parent), _onNotice(std::move(onNotice)), _pReportWindow(nullptr)
{
}

void hoAssertionController::failAssertion()
{
    if (!hasDialogs())
    {
        _onNotice("An assertion failed, and its handler stayed silent");
    }
    gtTriggerAssertonFailureHandler("OnFailAssertion", __FILE__, __LINE__,
                                    "Assertion failure (this one was asked for in the Developer menu)");
}

void hoAssertionController::showReport()
{
    if (_pReportWindow == nullptr)
    {
        _pReportWindow = new hoAssertionReportWindow(&_parent, _switch.report());
    }
    _pReportWindow->Show();
    _pReportWindow->Raise();
}

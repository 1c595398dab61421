// SPDX-License-Identifier: Apache-2.0
#include "assertionReporting/arAssertionKit.h"

#include <utility>

#include "assertionReporting/arAssertionReport.h"
#include "assertionReporting/arAssertionReportWindow.h"
#include "assertionReporting/arInteractiveAssertionFailureHandler.h"
#include "assertionReporting/arToolkitBridge.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "platform/osWrappers/osProcess.h"

arAssertionKit::arAssertionKit()
    : _pReport(std::make_shared<arAssertionReport>()),
      _pHandler(std::make_shared<arInteractiveAssertionFailureHandler>(osGetCurrentThreadId(), _pReport)),
      _isAsking(false)
{
}

arAssertionKit::~arAssertionKit()
{
    setAsking(false);
    // A handler whose dialog is up outlives the kit, and what the function uses need not.
    _pHandler->setBeforeEnd(nullptr);
}

void arAssertionKit::setAsking(bool isAsking)
{
    if (isAsking)
    {
        gtRegisterAssertionFailureHandler(_pHandler.get());
    }
    else
    {
        gtUnRegisterAssertionFailureHandler(_pHandler.get());
    }
    _isAsking = isAsking;
}

void arAssertionKit::bridgeToolkit()
{
    if (_pBridge == nullptr)
    {
        _pBridge = std::make_unique<arToolkitBridge>();
    }
}

bool arAssertionKit::isDeciding() const
{
    return _pHandler->isDeciding();
}

void arAssertionKit::setBeforeEnd(std::function<void()> function)
{
    _pHandler->setBeforeEnd(std::move(function));
}

arAssertionReportWindow* arAssertionKit::makeReportWindow(wxWindow* pParent) const
{
    return new arAssertionReportWindow(pParent, _pReport);
}

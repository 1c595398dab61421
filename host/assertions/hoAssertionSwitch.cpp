// SPDX-License-Identifier: Apache-2.0
#include "host/assertions/hoAssertionSwitch.h"

#include "host/assertions/hoAssertionReport.h"
#include "host/assertions/hoInteractiveAssertionFailureHandler.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "platform/osWrappers/osProcess.h"

hoAssertionSwitch::hoAssertionSwitch() : _pReport(std::make_shared<hoAssertionReport>()) {}

hoAssertionSwitch::~hoAssertionSwitch()
{
    setOn(false);
}

void hoAssertionSwitch::setOn(bool isOn)
{
    if (isOn == this->isOn())
    {
        return;
    }
    if (isOn)
    {
        _pHandler = std::make_shared<hoInteractiveAssertionFailureHandler>(osGetCurrentThreadId(), _pReport);
        gtRegisterAssertionFailureHandler(_pHandler.get());
    }
    else
    {
        gtUnRegisterAssertionFailureHandler(_pHandler.get());
        _pHandler.reset();
    }
}

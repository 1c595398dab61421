// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoAssertionController.h"

#include "assertionReporting/arAssertionReportWindow.h"
#include "host/window/hoTexts.h"
#include "platform/baseTools/gtAssert.h"
#include "platform/osWrappers/osProcess.h"
#include "platform/toolkit/gtComeToFront.h"

#include <string_view>
#include <utility>

namespace
{

// Where the sources of this program are, if the compiler was given whole paths.
gtString sourceFolder()
{
    const std::string_view file = __FILE__;
    const std::string_view name = "/host/window/hoAssertionController.cpp";
    return file.substr(0, file.size() > name.size() ? file.size() - name.size() : 0);
}

}  // namespace

hoAssertionController::hoAssertionController(wxWindow& parent, Callbacks callbacks)
    : _parent(parent), _callbacks(std::move(callbacks)), _pReportWindow(nullptr)
{
    _kit.bridgeToolkit();
    _kit.setBeforeEnd(_callbacks._onEnd);
    const gtString folder = sourceFolder();
    if (!folder.isEmpty())
    {
        osAddSourceCodeFolder(osFilePath(folder));
    }
}

void hoAssertionController::failAssertion()
{
    if (!hasDialogs())
    {
        _callbacks._onNotice(_("An assertion failed, and its handler stayed silent"));
    }
    GT_ASSERT_AT(false, "this one was asked for in the Developer menu", "OnFailAssertion", __FILE__, __LINE__);
}

void hoAssertionController::showReport()
{
    if (_pReportWindow == nullptr)
    {
        _pReportWindow = _kit.makeReportWindow(&_parent);
    }
    gtComeToFront(*_pReportWindow);
}

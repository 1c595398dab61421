// SPDX-License-Identifier: Apache-2.0
#include "app/ApplicationShell.h"

#include <new>

#include <wx/build.h>
#include <wx/event.h>

#include "MainFrame.h"

#include "assertionHandling/ahDialogBasedAssertionFailureHandler.h"
#include "platform/baseTools/gtAssert.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "platform/baseTools/gtString.h"
#include "platform/osWrappers/osProcess.h"
#include "platform/toolkit/gtTextConversion.h"

namespace
{

const char* const thisFile = "app/ApplicationShell.cpp";

// The lines under which this file's failed assertions are known, wherever in it they stand.
const int handlerAssertionLine = 51;
const int argumentsAssertionLine = 109;

wxAppInitializer applicationInitializer(&wxCreateApp);

}  // namespace

wxAppConsole* wxCreateApp()
{
    wxAppConsole::CheckBuildOptions(WX_BUILD_OPTIONS_SIGNATURE, "your program");
    return new ApplicationShell;
}

ApplicationShell& wxGetApp()
{
    return *static_cast<ApplicationShell*>(wxApp::GetInstance());
}

ApplicationShell::ApplicationShell() : _pMainFrame(nullptr), _pAssertionFailureHandler(nullptr)
{
    // The toolkit leaves its own field as it is until its entry function sets it.
    argc = 0;
}

ApplicationShell::~ApplicationShell() = default;

bool ApplicationShell::OnInit()
{
    const unsigned int mainThreadId = osGetCurrentThreadId();
    _pAssertionFailureHandler = new (std::nothrow) ahDialogBasedAssertionFailureHandler(mainThreadId);
    if (GT_ASSERT_AT(_pAssertionFailureHandler != nullptr, "_pAssertionFailureHandler != __null", "OnInit", thisFile,
                     handlerAssertionLine))
    {
        gtRegisterAssertionFailureHandler(_pAssertionFailureHandler);
    }

    _pMainFrame = new (std::nothrow) MainFrame;
    if (_pMainFrame == nullptr)
    {
        return false;
    }
    // The toolkit deletes the window when the user closes it, and a document may still come after that. The event also
    // rises from the windows inside, and the application object may be gone before the window is.
    _pMainFrame->Bind(wxEVT_DESTROY,
                      [](wxWindowDestroyEvent& event)
                      {
                          auto* pApplication = dynamic_cast<ApplicationShell*>(wxApp::GetInstance());
                          if (pApplication != nullptr && event.GetEventObject() == pApplication->_pMainFrame)
                          {
                              pApplication->_pMainFrame = nullptr;
                          }
                          event.Skip();
                      });
    _pMainFrame->Show(true);
    SetTopWindow(_pMainFrame);
    return true;
}

int ApplicationShell::OnExit()
{
    if (_pAssertionFailureHandler == nullptr)
    {
        return 0;
    }
    gtUnRegisterAssertionFailureHandler(_pAssertionFailureHandler);
    delete _pAssertionFailureHandler;
    _pAssertionFailureHandler = nullptr;
    return 0;
}

void ApplicationShell::MacOpenFile(const wxString& fileName)
{
    if (_pMainFrame != nullptr)
    {
        _pMainFrame->openFilePath(gtPathBytesFromText(fileName), true);
        return;
    }
    if (!GT_ASSERT_AT(argc == 0 && !argv, "(argc == 0)&&(argv == __null)", "MacOpenFile", thisFile,
                      argumentsAssertionLine))
    {
        return;
    }
    const wxWCharBuffer path = fileName.wc_str();
    const wchar_t* arguments[] = {path.data()};
    argv.Init(1, arguments);
    argc = 1;
}

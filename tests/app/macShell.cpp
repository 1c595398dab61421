// SPDX-License-Identifier: Apache-2.0
// ApplicationShell.h as a compiler sees it on macOS, with a stand-in for the toolkit. The toolkit's call of MacOpenFile
// reaches the shell's. Ends with 0 if it does.
#include "app/ApplicationShell.h"

wxApp::~wxApp() = default;

bool wxApp::OnInit()
{
    return false;
}

int wxApp::OnExit()
{
    return 1;
}

void wxApp::MacOpenFile(const wxString& /*fileName*/) {}

namespace
{
wxString openedFile;
}

ApplicationShell::ApplicationShell() : _pMainFrame(nullptr), _pAssertionFailureHandler(nullptr) {}

ApplicationShell::~ApplicationShell() = default;

bool ApplicationShell::OnInit()
{
    return true;
}

int ApplicationShell::OnExit()
{
    return 0;
}

void ApplicationShell::MacOpenFile(const wxString& fileName)
{
    openedFile = fileName;
}

int main()
{
    ApplicationShell shell;
    wxApp& application = shell;
    application.MacOpenFile("document");
    return openedFile == "document" && application.OnInit() && application.OnExit() == 0 ? 0 : 1;
}

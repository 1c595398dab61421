// SPDX-License-Identifier: Apache-2.0
// The shape of the toolkit's application class on macOS, as far as ApplicationShell.h depends on it: what is virtual
// there.
#ifndef TESTS_APP_MAC_TOOLKIT_WX_APP_H
#define TESTS_APP_MAC_TOOLKIT_WX_APP_H

#include <string>

using wxString = std::string;

class wxApp
{
public:
    wxApp() = default;
    wxApp(const wxApp&) = delete;
    wxApp& operator=(const wxApp&) = delete;
    virtual ~wxApp();
    virtual bool OnInit();
    virtual int OnExit();
    virtual void MacOpenFile(const wxString& fileName);
};

#endif

// SPDX-License-Identifier: Apache-2.0
// What the main window is measured against: a frame of the same toolkit, with a menu bar and a status bar, and nothing
// else. With an argument, without those.
#include <wx/app.h>
#include <wx/frame.h>
#include <wx/menu.h>

namespace
{

class BareApplication : public wxApp
{
public:
    bool OnInit() override
    {
        auto* pFrame = new wxFrame(nullptr, wxID_ANY, "Bare frame", wxDefaultPosition, wxSize(900, 600));
        if (argc < 2)
        {
            auto* pMenu = new wxMenu;
            pMenu->Append(wxID_EXIT);
            auto* pMenuBar = new wxMenuBar;
            pMenuBar->Append(pMenu, "&File");
            pFrame->SetMenuBar(pMenuBar);
            pFrame->CreateStatusBar();
        }
        pFrame->Show();
        return true;
    }
};

}  // namespace

wxIMPLEMENT_APP(BareApplication);

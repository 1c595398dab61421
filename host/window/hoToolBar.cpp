// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoToolBar.h"

#include "host/window/hoBindCommand.h"
#include "host/window/hoCommands.h"
#include "host/window/hoTexts.h"
#include "host/window/hoThemeIcon.h"
#include "platform/toolkit/gtReaders.h"

#include <wx/control.h>
#include <wx/frame.h>
#include <wx/settings.h>
#include <wx/toolbar.h>

#include <utility>

namespace
{
const char* const setting = "toolBar";

struct Tool
{
    int _command;
    const char* _label;
    const char* _help;
    const char* _icon;
    const char* _fallback;
};

const Tool tools[] = {
    {wxID_OPEN, wxTRANSLATE("Open"), wxTRANSLATE("Open documents, several at once (Ctrl+O)"), "document-open-symbolic",
     R"(<path d="M1.5 13.5V3H6L7.5 5H14.5V13.5Z"/>)"},
    {ID_LOAD_PRIVATE_KEY, wxTRANSLATE("Key"), wxTRANSLATE("Load the key that signs, from a PEM file (Ctrl+K)"),
     "dialog-password-symbolic", R"(<circle cx="4.5" cy="8" r="3"/><path d="M7.5 8H15V11.5M11.5 8V11"/>)"},
    {ID_SIGN, wxTRANSLATE("Sign"), wxTRANSLATE("Sign the selected documents (Ctrl+S)"), "document-edit-symbolic",
     R"(<path d="M2 14 3 10.5 11.5 2 14 4.5 5.5 13Z"/>)"},
    {ID_TEST, wxTRANSLATE("Test"), wxTRANSLATE("Test the signatures of the selected documents (Ctrl+T)"),
     "emblem-ok-symbolic", R"(<path d="M2 8.5 6 12.5 14 3.5"/>)"},
};
}  // namespace

hoToolBar::hoToolBar(wxFrame& frame, hoSettings& settings, std::function<wxString(int command)> whyGrey)
    : _frame(frame), _settings(settings), _whyGrey(std::move(whyGrey)), _pBar(nullptr)
{
    hoBindCommand(frame, ID_SHOW_TOOL_BAR,
                  [this]
                  {
                      show(!isShown());
                      _settings.setNumber(setting, isShown() ? 1 : 0);
                  });
    frame.Bind(
        wxEVT_UPDATE_UI, [this](wxUpdateUIEvent& event) { event.Check(isShown()); }, ID_SHOW_TOOL_BAR);
}

void hoToolBar::showIfWanted()
{
    show(_settings.number(setting, 1, 0, 1) == 1);
}

bool hoToolBar::isShown() const
{
    return _pBar != nullptr && _pBar->IsShown();
}

void hoToolBar::show(bool isWanted)
{
    if (isWanted && _pBar == nullptr)
    {
        _pBar = _frame.CreateToolBar(wxTB_HORIZONTAL | wxTB_HORZ_TEXT | wxTB_FLAT, wxID_ANY, "tools");
        for (const Tool& tool : tools)
        {
            _pBar->AddTool(tool._command, wxGetTranslation(tool._label), wxBitmapBundle(wxBitmap(16, 16)),
                           wxGetTranslation(tool._help));
        }
        drawIcons();
        _pBar->Realize();
        gtNameForReaders(*_pBar, wxControl::RemoveMnemonics(_("&Tool bar")));
        // The toolkit asks here for each tool, whenever it asks whether that is grey.
        _pBar->Bind(wxEVT_UPDATE_UI,
                    [this](wxUpdateUIEvent& event)
                    {
                        explain(event.GetId());
                        event.Skip();
                    });
        _pBar->Bind(wxEVT_SYS_COLOUR_CHANGED,
                    [this](wxSysColourChangedEvent& event)
                    {
                        drawIcons();
                        event.Skip();
                    });
    }
    else if (isWanted != isShown())
    {
        _pBar->Show(isWanted);
        _frame.SendSizeEvent();
    }
}

void hoToolBar::drawIcons()
{
    const wxColour colour = wxSystemSettings::GetColour(wxSYS_COLOUR_BTNTEXT);
    for (const Tool& tool : tools)
    {
        _pBar->SetToolNormalBitmap(tool._command, hoThemeIcon(*_pBar, tool._icon, colour, tool._fallback));
    }
}

void hoToolBar::explain(int command)
{
    for (const Tool& tool : tools)
    {
        if (tool._command == command)
        {
            const wxString reason = _whyGrey(command);
            const wxString help = wxGetTranslation(tool._help) + (reason.empty() ? reason : "\n" + reason);
            // A tooltip that is up would be shown anew.
            if (_pBar->GetToolShortHelp(command) != help)
            {
                _pBar->SetToolShortHelp(command, help);
            }
        }
    }
}

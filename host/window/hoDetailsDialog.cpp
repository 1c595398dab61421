// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoDetailsDialog.h"

#include "host/window/hoClipboard.h"

#include <wx/button.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

hoDetailsDialog::hoDetailsDialog(wxWindow* pParent, const wxString& title, const wxString& heading,
                                 const wxString& text)
    : wxDialog(pParent, wxID_ANY, title, wxDefaultPosition, wxDefaultSize, wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER)
{
    auto* pHeading = new wxStaticText(this, wxID_ANY, heading);
    auto* pText = new wxTextCtrl(this, wxID_ANY, text, wxDefaultPosition, FromDIP(wxSize(560, 260)),
                                 wxTE_MULTILINE | wxTE_READONLY | wxTE_DONTWRAP);
    auto* pCopy = new wxButton(this, wxID_COPY);
    auto* pClose = new wxButton(this, wxID_CLOSE);
    pCopy->SetToolTip("Copy the whole text to the clipboard");
    SetEscapeId(wxID_CLOSE);
    SetAffirmativeId(wxID_CLOSE);

    pCopy->Bind(wxEVT_BUTTON, [text](wxCommandEvent&) { hoCopyText(text); });

    auto* pButtons = new wxBoxSizer(wxHORIZONTAL);
    pButtons->AddStretchSpacer();
    pButtons->Add(pCopy, wxSizerFlags().Border(wxRIGHT));
    pButtons->Add(pClose);
    auto* pTop = new wxBoxSizer(wxVERTICAL);
    pTop->Add(pHeading, wxSizerFlags().Expand().DoubleBorder(wxLEFT | wxRIGHT | wxTOP));
    pTop->Add(pText, wxSizerFlags(1).Expand().DoubleBorder());
    pTop->Add(pButtons, wxSizerFlags().Expand().DoubleBorder(wxLEFT | wxRIGHT | wxBOTTOM));
    SetSizerAndFit(pTop);
    CentreOnParent();
    pClose->SetDefault();
    pClose->SetFocus();
}

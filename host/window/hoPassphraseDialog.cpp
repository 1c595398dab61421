// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoPassphraseDialog.h"

#include "host/window/hoTexts.h"

#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

namespace
{
const int fieldWidth = 320;
}  // namespace

hoPassphraseDialog::hoPassphraseDialog(wxWindow* pParent, const wxString& question)
    : wxDialog(pParent, wxID_ANY, _("Passphrase")), _pPassphrase(nullptr)
{
    auto* pQuestion = new wxStaticText(this, wxID_ANY, wxControl::EscapeMnemonics(question));
    _pPassphrase =
        new wxTextCtrl(this, wxID_ANY, wxString(), wxDefaultPosition, FromDIP(wxSize(fieldWidth, -1)), wxTE_PASSWORD);
    auto* pButtons = CreateSeparatedButtonSizer(wxOK | wxCANCEL);

    _pPassphrase->SetName("passphrase");

    auto* pTop = new wxBoxSizer(wxVERTICAL);
    pTop->Add(pQuestion, wxSizerFlags().DoubleBorder(wxLEFT | wxRIGHT | wxTOP));
    pTop->Add(_pPassphrase, wxSizerFlags().Expand().DoubleBorder());
    pTop->Add(pButtons, wxSizerFlags().Expand().DoubleBorder(wxLEFT | wxRIGHT | wxBOTTOM));
    SetSizerAndFit(pTop);
    CentreOnParent();
    _pPassphrase->SetFocus();
}

hoTypedSecret hoPassphraseDialog::passphrase() const
{
    return hoTypedSecret(*_pPassphrase);
}

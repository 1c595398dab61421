// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoKeyInformationDialog.h"

#include "host/keys/hoPublicKey.h"
#include "host/window/hoClipboard.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoSaveFile.h"
#include "host/window/hoScreenFit.h"
#include "host/window/hoSummary.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtTextConversion.h"
#include "platform/toolkit/gtTextDirection.h"

#include <wx/button.h>
#include <wx/choicdlg.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

namespace
{
const wxSize usualSize(590, 300);
const wxSize leastTextSize(200, 80);
const unsigned int rightsOfPublicFile = 0644;

// heading: with a place for the key's size.
wxString informationOf(const hoLoadedKey& key, const wxString& heading)
{
    const wxString indent = "    ";
    return hoFilledText(heading, {hoPlainNumber(key._pKey->bits())}) + "\n" + indent +
           hoFilledText(_("File: %s"), {hoDisplayText(key._path)}) + "\n" + indent +
           _("Fingerprint (SHA-256 of the public key):") + "\n" + indent + gtTextFromBytes(hoFingerprint(*key._pKey)) +
           "\n" + indent + hoFilledText(_("In signatures: %s"), {gtTextFromBytes(hoShortFingerprint(*key._pKey))}) +
           "\n";
}

// A few lines for each key that is loaded.
wxString informationOf(const hoKeyRing& keys)
{
    wxString text;
    std::size_t number = 0;
    for (const hoLoadedKey& key : keys.keys())
    {
        text += informationOf(key, keys.isPrivate(number++) ? _("Private key of %s bits") : _("Public key of %s bits"));
    }
    return text;
}
}  // namespace

hoKeyInformationDialog::hoKeyInformationDialog(wxWindow* pParent, const hoKeyRing& keys)
    : wxDialog(pParent, wxID_ANY, _("Key information"), wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER),
      _keys(keys)
{
    const wxString text = informationOf(keys);
    auto* pLabel = new wxStaticText(this, wxID_ANY, _("&Loaded keys"));
    auto* pText = new wxTextCtrl(this, wxID_ANY, text, wxDefaultPosition, wxDefaultSize,
                                 wxTE_MULTILINE | wxTE_READONLY | wxTE_DONTWRAP);
    auto* pExport = new wxButton(this, wxID_SAVE, _("&Export public key..."));
    auto* pCopy = new wxButton(this, wxID_COPY, _("Copy &all"));
    auto* pClose = new wxButton(this, wxID_CLOSE);
    pText->SetName("keyInformation");
    pText->SetMinSize(FromDIP(leastTextSize));
    pExport->SetToolTip(_("Write the public half to a file, for those who shall test what you sign"));
    pCopy->SetToolTip(_("Copy the whole text to the clipboard"));
    SetEscapeId(wxID_CLOSE);
    SetAffirmativeId(wxID_CLOSE);

    pExport->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { exportPublicHalf(); });
    pCopy->Bind(wxEVT_BUTTON, [text](wxCommandEvent&) { hoCopyText(text); });

    auto* pButtons = new wxBoxSizer(wxHORIZONTAL);
    pButtons->Add(pExport);
    pButtons->AddStretchSpacer();
    pButtons->Add(pCopy, wxSizerFlags().Border(wxRIGHT));
    pButtons->Add(pClose);
    auto* pTop = new wxBoxSizer(wxVERTICAL);
    pTop->Add(pLabel, wxSizerFlags().Expand().DoubleBorder(wxLEFT | wxRIGHT | wxTOP));
    pTop->Add(pText, wxSizerFlags(1).Expand().DoubleBorder());
    pTop->Add(pButtons, wxSizerFlags().Expand().DoubleBorder(wxLEFT | wxRIGHT | wxBOTTOM));
    gtAlignTexts(*this);
    SetSizer(pTop);
    hoFitOnScreen(*this, FromDIP(usualSize));
    CentreOnParent();
    pClose->SetDefault();
    pClose->SetFocus();
}

void hoKeyInformationDialog::exportPublicHalf()
{
    const std::vector<hoLoadedKey> keys = _keys.keys();
    const std::size_t number = chooseKey();
    if (number >= keys.size())
    {
        return;
    }
    const hoLoadedKey& key = keys[number];
    const wxString file = hoDisplayText(hoLastComponent(key._path), 60);
    const wxString stem = file.BeforeLast('.');
    hoSaveFileQuestion question;
    question._title = _("Export the public key");
    question._name = (stem.empty() ? file : stem) + ".pub.pem";
    question._types = _("PEM files (*.pem)|*.pem|All files|*");
    question._failure = _("Cannot export to %s: %s.");
    question._rights = rightsOfPublicFile;
    for (const hoLoadedKey& loaded : keys)
    {
        question._filesOfKeys.push_back(loaded._path);
    }
    hoSaveFile(*this, question, hoPublicKeyPem(*key._pKey));
}

std::size_t hoKeyInformationDialog::chooseKey()
{
    if (_keys.canSign() || _keys._publics.size() == 1)
    {
        return 0;
    }
    wxArrayString choices;
    for (const hoLoadedKey& key : _keys._publics)
    {
        choices.push_back(hoKeyText(key, false));
    }
    wxSingleChoiceDialog dialog(this, _("Which key is to be exported?"), _("Export the public key"), choices);
    return dialog.ShowModal() == wxID_OK ? static_cast<std::size_t>(dialog.GetSelection()) : choices.size();
}

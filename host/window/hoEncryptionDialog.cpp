// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoEncryptionDialog.h"

#include "host/messages/hoMessages.h"
#include "host/messages/hoNumbers.h"
#include "host/signing/hoShortTexts.h"
#include "host/window/hoClipboard.h"
#include "host/window/hoDetailsDialog.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoScreenFit.h"
#include "host/window/hoSummary.h"
#include "host/window/hoTexts.h"
#include "platform/baseTools/gtWipe.h"
#include "platform/toolkit/gtTextConversion.h"
#include "platform/toolkit/gtTextDirection.h"
#include "platform/toolkit/gtTextLayout.h"

#include <wx/button.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

namespace
{
const wxSize usualSize(544, 500);
const wxSize leastTextSize(200, 64);
const long longestLine = 20000;  // characters: the cipher text of a key of 65,536 bits takes fewer

wxString keysText(const hoKeyRing& keys)
{
    if (!keys.canTest())
    {
        return _("Load a key to encrypt or decrypt.");
    }
    const wxString privateKey = hoKeyText(keys._private, true);
    const wxString publicKey = keys._publics.empty() ? wxString() : hoKeyText(keys._publics.back(), false);
    return (publicKey.empty() ? hoFilledText(_("Encrypts with the partner of the %s."), {privateKey})
                              : hoFilledText(_("Encrypts with the %s."), {publicKey})) +
           "\n" +
           (keys.canSign() ? hoFilledText(_("Decrypts with the %s."), {privateKey})
                           : _("Load a private key to decrypt."));
}
}  // namespace

hoEncryptionDialog::hoEncryptionDialog(wxWindow* pParent, const hoKeyRing& keys)
    : wxDialog(pParent, wxID_ANY, _("Texts"), wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER),
      _keys(keys),
      _pPlain(nullptr),
      _pCount(nullptr),
      _pCipher(nullptr),
      _pSaid(nullptr)
{
    auto* pPlainLabel = new wxStaticText(this, wxID_ANY, _("&Plain text"));
    _pPlain = new wxTextCtrl(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize, wxTE_MULTILINE);
    _pCount = new wxStaticText(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                               wxST_NO_AUTORESIZE | wxST_ELLIPSIZE_END);
    auto* pCopyPlain = new wxButton(this, wxID_ANY, _("Copy p&lain text"));
    auto* pEncrypt = new wxButton(this, wxID_ANY, _("&Encrypt"));
    auto* pDecrypt = new wxButton(this, wxID_ANY, _("&Decrypt"));
    auto* pCipherLabel = new wxStaticText(this, wxID_ANY, _("C&ipher text"));
    _pCipher =
        new wxTextCtrl(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize, wxTE_MULTILINE | wxTE_DONTWRAP);
    auto* pCopyCipher = new wxButton(this, wxID_ANY, _("C&opy cipher text"));
    _pSaid = new wxStaticText(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                              wxST_NO_AUTORESIZE | wxST_ELLIPSIZE_END);
    auto* pKeys = new wxStaticText(this, wxID_ANY, wxControl::EscapeMnemonics(keysText(_keys)), wxDefaultPosition,
                                   wxDefaultSize, wxST_NO_AUTORESIZE | wxST_ELLIPSIZE_END);
    pKeys->SetName("keys");
    // Whole where it is cut off.
    pKeys->SetToolTip(keysText(_keys));
    auto* pClose = new wxButton(this, wxID_CLOSE, _("&Close"));

    _pPlain->SetMinSize(FromDIP(leastTextSize));
    _pCipher->SetMinSize(FromDIP(leastTextSize));
    // What is too long for the dialog is cut off, and does not make it wider than a small screen.
    for (wxStaticText* pLine : {_pCount, _pSaid, pKeys})
    {
        pLine->SetMinSize(wxSize(1, pLine->GetBestSize().GetHeight()));
    }
    _pPlain->SetName("plain");
    _pCount->SetName("count");
    _pCipher->SetName("cipher");
    _pSaid->SetName("said");
    _pCipher->SetFont(wxFontInfo().Family(wxFONTFAMILY_TELETYPE));
    pEncrypt->SetToolTip(_("With the public key, or with the private key's partner"));
    pDecrypt->SetToolTip(_("With the private key"));
    SetEscapeId(wxID_CLOSE);
    showCount();

    pEncrypt->Bind(wxEVT_UPDATE_UI,
                   [this](wxUpdateUIEvent& event)
                   {
                       const bool fits = encryptingKey() != nullptr && gtBytesFromText(_pPlain->GetValue()).length() <=
                                                                           hoLongestText(*encryptingKey());
                       event.Enable(fits && !_pPlain->IsEmpty());
                   });
    pDecrypt->Bind(wxEVT_UPDATE_UI, [this](wxUpdateUIEvent& event)
                   { event.Enable(decryptingKey() != nullptr && !_pCipher->IsEmpty()); });
    _pPlain->Bind(wxEVT_TEXT,
                  [this](wxCommandEvent&)
                  {
                      gtAllowBreaksInLongWords(_pPlain);
                      showCount();
                  });
    _pCipher->Bind(wxEVT_TEXT,
                   [this](wxCommandEvent&)
                   {
                       // Broken lines get hyphens, which are no part of the cipher text. None is as long as this.
                       if (_pCipher->GetLastPosition() > longestLine)
                       {
                           gtAllowBreaksInLongWords(_pCipher);
                       }
                   });
    pEncrypt->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { encrypt(); });
    pDecrypt->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { decrypt(); });
    pCopyPlain->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { copy(_pPlain, _("Copied the plain text.")); });
    pCopyCipher->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { copy(_pCipher, _("Copied the cipher text.")); });

    auto* pUnderPlain = new wxBoxSizer(wxHORIZONTAL);
    pUnderPlain->Add(_pCount, wxSizerFlags(1).CentreVertical());
    pUnderPlain->Add(pCopyPlain);
    auto* pMiddle = new wxBoxSizer(wxHORIZONTAL);
    pMiddle->Add(pEncrypt, wxSizerFlags().Border(wxRIGHT));
    pMiddle->Add(pDecrypt);
    auto* pButtons = new wxBoxSizer(wxHORIZONTAL);
    pButtons->Add(pCopyCipher);
    pButtons->AddStretchSpacer();
    pButtons->Add(pClose);
    auto* pTop = new wxBoxSizer(wxVERTICAL);
    const wxSizerFlags row = wxSizerFlags().Expand().DoubleBorder(wxLEFT | wxRIGHT | wxTOP);
    pTop->Add(pPlainLabel, row);
    pTop->Add(_pPlain, wxSizerFlags(1).Expand().DoubleBorder(wxLEFT | wxRIGHT));
    pTop->Add(pUnderPlain, row);
    pTop->Add(pMiddle, wxSizerFlags().CentreHorizontal().DoubleBorder(wxTOP));
    pTop->Add(pCipherLabel, row);
    pTop->Add(_pCipher, wxSizerFlags(1).Expand().DoubleBorder(wxLEFT | wxRIGHT));
    pTop->Add(_pSaid, row);
    pTop->Add(pKeys, row);
    pTop->Add(pButtons, wxSizerFlags().Expand().DoubleBorder());
    gtAlignTexts(*this);
    SetSizer(pTop);
    hoFitOnScreen(*this, FromDIP(usualSize));
    CentreOnParent();
    _pPlain->SetFocus();
}

const crRSAEncryptionKey* hoEncryptionDialog::encryptingKey() const
{
    const std::shared_ptr<const hoKey>& pKey =
        _keys._publics.empty() ? _keys._private._pKey : _keys._publics.back()._pKey;
    return pKey == nullptr ? nullptr : &pKey->publicKey();
}

const crRSAEncryptionKey* hoEncryptionDialog::decryptingKey() const
{
    return _keys._private._pKey == nullptr ? nullptr : &_keys._private._pKey->privateKey();
}

void hoEncryptionDialog::encrypt()
{
    if (encryptingKey() == nullptr)
    {
        return;
    }
    gtWipedText text{gtBytesFromText(_pPlain->GetValue())};
    gtString cipherText;
    const hoTextResult result = hoEncryptText(*encryptingKey(), text._text, cipherText);
    const int length = text._text.length();
    if (result.isOk())
    {
        _pCipher->ChangeValue(gtTextFromBytes(cipherText));
        say(_("Encrypted."));
    }
    else
    {
        say(hoSentence(hoEncryptionReason(result._problem, *encryptingKey(), length)));
    }
}

void hoEncryptionDialog::decrypt()
{
    if (decryptingKey() == nullptr)
    {
        return;
    }
    const gtString cipherText = gtBytesFromText(_pCipher->GetValue());
    hoReadableText found = hoDecryptForReading(*decryptingKey(), cipherText);
    switch (found._problem)
    {
    case hoTextProblem::None:
        if (found._isText)
        {
            _pPlain->ChangeValue(gtTextFromBytes(found._bytes));
            say(_("Decrypted."));
        }
        else
        {
            sayWithBytes(_("What came out is no valid text (UTF-8)."),
                         _("What came out is no valid text (UTF-8). These bytes come out:"), found._bytes);
        }
        break;
    case hoTextProblem::DoesNotComeOut:
        sayWithBytes(_("This text is another key's, or damaged."),
                     _("This text is another key's, or damaged. These bytes come out:"), found._bytes);
        break;
    default:
        say(hoSentence(hoDecryptionReason(found._problem, *decryptingKey(), cipherText.length())));
        break;
    }
    gtWipe(found._bytes);
    showCount();
}

void hoEncryptionDialog::copy(const wxTextCtrl* pText, const wxString& done)
{
    say(hoCopyText(pText->GetValue()) ? done : _("The clipboard is not available."));
}

void hoEncryptionDialog::showCount()
{
    if (encryptingKey() == nullptr)
    {
        return;
    }
    const int length = gtBytesFromText(_pPlain->GetValue()).length();
    const int most = hoLongestText(*encryptingKey());
    // How long a text is, and how long it may be.
    const wxString format = length > most ? _("%1$s of %2$s: too long for this key") : _("%1$s of %2$s");
    _pCount->SetLabelText(hoFilledText(format, {hoNumber(static_cast<std::uint64_t>(length)),
                                                gtTextFromBytes(hoExactSizeText(static_cast<std::uint64_t>(most)))}));
}

void hoEncryptionDialog::say(const wxString& text)
{
    _pSaid->SetLabelText(text);
    // Whole where it is cut off.
    _pSaid->SetToolTip(text);
}

// In a window of their own: what was typed above stays.
void hoEncryptionDialog::sayWithBytes(const wxString& text, const wxString& heading, const gtString& bytes)
{
    say(text);
    hoDetailsDialog(this, _("No text"), heading, gtTextFromBytes(hoHexDump(bytes))).ShowModal();
}
